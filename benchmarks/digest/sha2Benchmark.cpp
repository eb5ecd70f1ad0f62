#include "vansys/sha2.h"

#include "Rows.h"

#include <memory>
#include <string>
#include <vector>

#if defined(VANSYS_BENCH_OPENSSL)
#    include <openssl/crypto.h>
#    include <openssl/evp.h>
#endif

namespace bench
{

namespace
{

constexpr std::size_t SmallSize = 64;
constexpr std::size_t LargeSize = 1 << 20;

/// One algorithm, under the name of each side.
struct Algorithm
{
    char const *name;
    sha2::SHA_TYPE type;
};

/// Bytes that repeat nowhere near; what they are makes no difference to the time.
std::vector<unsigned char> Message(std::size_t size)
{
    std::vector<unsigned char> bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(i * 2654435761u >> 16);
    return bytes;
}

#if defined(VANSYS_BENCH_OPENSSL)

struct FreeEvp
{
    void operator()(EVP_MD *algorithm) const { EVP_MD_free(algorithm); }

    void operator()(EVP_MD_CTX *context) const { EVP_MD_CTX_free(context); }
};

using EvpAlgorithm = std::unique_ptr<EVP_MD, FreeEvp>;
using EvpContext = std::unique_ptr<EVP_MD_CTX, FreeEvp>;

/// Fetched once, as its documentation advises, not looked up for every digest.
EvpAlgorithm Fetch(Algorithm const &algorithm)
{
    return EvpAlgorithm(EVP_MD_fetch(nullptr, algorithm.name, nullptr));
}

void EvpOneShot(benchmark::State &state, EVP_MD const *evp, std::size_t size)
{
    std::vector<unsigned char> message = Message(size);
    unsigned char digest[EVP_MAX_MD_SIZE];
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(message.data());
        benchmark::DoNotOptimize(EVP_Digest(message.data(), message.size(), digest, nullptr, evp, nullptr));
        benchmark::DoNotOptimize(digest);
    }
}

void EvpReused(benchmark::State &state, Algorithm const &algorithm, std::size_t size)
{
    EvpAlgorithm const evp = Fetch(algorithm);
    EvpContext const context(EVP_MD_CTX_new());
    std::vector<unsigned char> message = Message(size);
    unsigned char digest[EVP_MAX_MD_SIZE];
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(message.data());
        EVP_DigestInit_ex(context.get(), evp.get(), nullptr);
        EVP_DigestUpdate(context.get(), message.data(), message.size());
        benchmark::DoNotOptimize(EVP_DigestFinal_ex(context.get(), digest, nullptr));
        benchmark::DoNotOptimize(digest);
    }
}

#endif

/// With an object of its own for each digest, as `EVP_Digest` makes a context for each.
void BenchmarkOneShot(Rows &rows, Algorithm const &algorithm, Target const &target)
{
    rows.push_back({"digest", std::string(algorithm.name) + " of 64 bytes, one shot with hex text", target});
    AddCase(rows.back(), OwnName,
            [algorithm](benchmark::State &state)
            {
                std::vector<unsigned char> message = Message(SmallSize);
                for (auto _ : state)
                {
                    benchmark::DoNotOptimize(message.data());
                    sha2 hash;
                    std::string text = hash.GetHash(algorithm.type, message.data(), SmallSize);
                    benchmark::DoNotOptimize(text);
                }
            });
#if defined(VANSYS_BENCH_OPENSSL)
    // The way of the manual's examples, which looks the implementation up each time, and the way without.
    AddCase(rows.back(), "EVP",
            [algorithm](benchmark::State &state)
            { EvpOneShot(state, EVP_get_digestbyname(algorithm.name), SmallSize); });
    AddCase(rows.back(), "EVP, fetched",
            [algorithm](benchmark::State &state)
            {
                EvpAlgorithm const evp = Fetch(algorithm);
                EvpOneShot(state, evp.get(), SmallSize);
            });
#endif
}

/// With one object for all digests. The hexadecimal text is part of the library's work all the same.
void BenchmarkReused(Rows &rows, Algorithm const &algorithm, std::size_t size, std::string const &sizeText,
                     std::optional<Target> const &target)
{
    rows.push_back({"digest", std::string(algorithm.name) + " of " + sizeText + ", object reused", target});
    AddCase(rows.back(), OwnName,
            [algorithm, size](benchmark::State &state)
            {
                std::vector<unsigned char> message = Message(size);
                sha2 hash;
                for (auto _ : state)
                {
                    benchmark::DoNotOptimize(message.data());
                    hash.Init(algorithm.type);
                    hash.Update(message.data(), static_cast<unsigned int>(size));
                    hash.End();
                    int length = 0;
                    benchmark::DoNotOptimize(hash.RawHash(length));
                    benchmark::ClobberMemory();
                }
            });
#if defined(VANSYS_BENCH_OPENSSL)
    AddCase(rows.back(), "EVP",
            [algorithm, size](benchmark::State &state) { EvpReused(state, algorithm, size); });
#endif
}

} // namespace

void AddDigestRows(Rows &rows)
{
#if defined(VANSYS_BENCH_OPENSSL)
    benchmark::AddCustomContext("EVP", OpenSSL_version(OPENSSL_VERSION));
#else
    benchmark::AddCustomContext("EVP", "left out: OpenSSL was not found when this was built");
#endif

    constexpr Algorithm Sha1{"SHA1", sha2::SHA1};
    constexpr Algorithm Sha256{"SHA256", sha2::SHA256};
    constexpr Algorithm Sha512{"SHA512", sha2::SHA512};

    BenchmarkOneShot(rows, Sha256, Target{2.0, {"EVP"}});
    BenchmarkReused(rows, Sha256, SmallSize, "64 bytes", {});
    BenchmarkReused(rows, Sha256, LargeSize, "1 MiB", Target{0.95, {"EVP"}});
    BenchmarkReused(rows, Sha1, LargeSize, "1 MiB", Target{0.95, {"EVP"}});
    BenchmarkReused(rows, Sha512, LargeSize, "1 MiB", Target{0.8, {"EVP"}});
}

} // namespace bench
