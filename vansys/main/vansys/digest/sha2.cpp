#include "vansys/sha2.h"

#include "main/platform/CpuFeatures.h"
#include "main/vansys/digest/sha2Compress.h"
#include "main/vansys/digest/sha2Constants.h"
#include "main/vansys/digest/sha2Functions.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace
{

using vansys::detail::Sha2Compressions;

/// What depends on the type alone.
struct TypeTraits
{
    char const *name;
    std::size_t digestSize;
};

constexpr TypeTraits Types[] = {{"Unknown!", 0}, {"SHA160", 20}, {"SHA224", 28},
                                {"SHA256", 32},  {"SHA384", 48}, {"SHA512", 64}};

constexpr unsigned char PaddingStart = 0x80;

void RequireAlgorithm(sha2::SHA_TYPE type)
{
    if (type < sha2::SHA1 || type > sha2::SHA512)
        throw std::runtime_error("Invalid SHA_TYPE type!");
}

/// The processor is asked once, by whichever thread comes first.
Sha2Compressions const &Compressions() noexcept
{
    static Sha2Compressions const s_compressions =
        vansys::detail::FastestSha2Compressions(vansys::detail::DetectCpuFeatures());
    return s_compressions;
}

} // namespace

// Not inlined: for a size that it knows, a compiler may take string instructions, which start up slowly.
[[gnu::noinline]] void sha2::MEMSET_BZERO(void *target, std::size_t size) noexcept
{
    std::memset(target, 0, size);
}

sha2::sha2() noexcept
{
    MEMSET_BZERO(m_hexText.data(), m_hexText.size());
    MEMSET_BZERO(m_digest.data(), m_digest.size());
    MEMSET_BZERO(&m_context, sizeof m_context);
}

sha2::sha2(sha2 const &other) = default;

sha2 &sha2::operator=(sha2 const &other)
{
    m_hex = other.m_hex; // first, as it alone can fail
    m_type = other.m_type;
    m_finished = other.m_finished;
    m_bigEndian = other.m_bigEndian;
    m_hexText = other.m_hexText;
    m_digest = other.m_digest;
    m_context = other.m_context;
    return *this;
}

sha2::~sha2() = default;

void sha2::Init(SHA_TYPE type)
{
    RequireAlgorithm(type);
    m_type = type;
    m_finished = false;
    MEMSET_BZERO(&m_context, sizeof m_context);
    switch (type)
    {
    case NONE:
        break;
    case SHA1:
        MEMCPY_BCOPY(m_context.words32.state, vansys::detail::Sha1Initial, sizeof m_context.words32.state);
        break;
    case SHA224:
        MEMCPY_BCOPY(m_context.words32.state, vansys::detail::Sha224Initial, sizeof m_context.words32.state);
        break;
    case SHA256:
        MEMCPY_BCOPY(m_context.words32.state, vansys::detail::Sha256Initial, sizeof m_context.words32.state);
        break;
    case SHA384:
        MEMCPY_BCOPY(m_context.words64.state, vansys::detail::Sha384Initial, sizeof m_context.words64.state);
        break;
    case SHA512:
        MEMCPY_BCOPY(m_context.words64.state, vansys::detail::Sha512Initial, sizeof m_context.words64.state);
        break;
    }
}

void sha2::Update(unsigned char const *data, unsigned int length)
{
    RequireAlgorithm(m_type);
    if (length == 0)
        return;
    if (m_type <= SHA256)
        SHA32bit_Update(data, length, m_type == SHA1);
    else
        SHA64bit_Update(data, length);
}

void sha2::End()
{
    RequireAlgorithm(m_type);
    std::size_t const digestSize = Types[m_type].digestSize;
    m_hex.reserve(2 * digestSize); // the one step that can fail, before anything is changed
    if (m_type <= SHA256)
    {
        SHA256_Internal_Last(m_type == SHA1);
        WriteDigest32(m_type == SHA1 ? 5 : 8);
    }
    else
    {
        SHA512_Internal_Last();
        WriteDigest64();
    }
    FormatHexText(digestSize);
    m_hex.assign(m_hexText.data(), 2 * digestSize);
    m_finished = true;
}

char const *sha2::HexHash() const
{
    if (!m_finished)
        throw std::runtime_error("Unfinished execution!");
    return m_hex.c_str();
}

std::string const &sha2::StringHash() const noexcept
{
    return m_hex;
}

unsigned char const *sha2::RawHash(int &length) const
{
    if (!m_finished)
        throw std::runtime_error("Unfinished execution!");
    length = static_cast<int>(Types[m_type].digestSize);
    return m_digest.data();
}

std::string const &sha2::GetHash(SHA_TYPE type, unsigned char const *data, unsigned int length)
{
    Init(type);
    Update(data, length);
    End();
    return StringHash();
}

char const *sha2::GetTypeString() const noexcept
{
    return Types[m_type].name;
}

sha2::SHA_TYPE sha2::GetEnumType() const noexcept
{
    return m_type;
}

bool sha2::IsBigEndian() const noexcept
{
    return m_bigEndian;
}

void sha2::SHA1_Internal_Transform(unsigned char const *blocks, std::size_t blockCount) noexcept
{
    Compressions().sha1(m_context.words32.state, blocks, blockCount);
}

void sha2::SHA256_Internal_Transform(unsigned char const *blocks, std::size_t blockCount) noexcept
{
    Compressions().sha256(m_context.words32.state, blocks, blockCount);
}

void sha2::SHA512_Internal_Transform(unsigned char const *blocks, std::size_t blockCount) noexcept
{
    Compressions().sha512(m_context.words64.state, blocks, blockCount);
}

void sha2::SHA32bit_Transform(unsigned char const *blocks, std::size_t blockCount, bool sha1) noexcept
{
    if (sha1)
        SHA1_Internal_Transform(blocks, blockCount);
    else
        SHA256_Internal_Transform(blocks, blockCount);
}

void sha2::SHA32bit_Update(unsigned char const *data, std::size_t length, bool sha1) noexcept
{
    Context32 &context = m_context.words32;
    std::size_t const used = static_cast<std::size_t>(context.bitCount / 8 % s_blockSize32);
    context.bitCount += Word64{length} * 8;
    if (used > 0)
    {
        std::size_t const part = std::min(length, s_blockSize32 - used);
        MEMCPY_BCOPY(context.buffer + used, data, part);
        if (used + part < s_blockSize32)
            return;
        SHA32bit_Transform(context.buffer, 1, sha1);
        data += part;
        length -= part;
    }

    // Whole blocks are compressed where they lie.
    std::size_t const blockCount = length / s_blockSize32;
    if (blockCount > 0)
        SHA32bit_Transform(data, blockCount, sha1);
    MEMCPY_BCOPY(context.buffer, data + blockCount * s_blockSize32, length % s_blockSize32);
}

void sha2::SHA64bit_Update(unsigned char const *data, std::size_t length) noexcept
{
    Context64 &context = m_context.words64;
    std::size_t const used = static_cast<std::size_t>(context.bitCount[0] / 8 % s_blockSize64);
    ADDINC128(context.bitCount, Word64{length} * 8);
    if (used > 0)
    {
        std::size_t const part = std::min(length, s_blockSize64 - used);
        MEMCPY_BCOPY(context.buffer + used, data, part);
        if (used + part < s_blockSize64)
            return;
        SHA512_Internal_Transform(context.buffer, 1);
        data += part;
        length -= part;
    }

    std::size_t const blockCount = length / s_blockSize64;
    if (blockCount > 0)
        SHA512_Internal_Transform(data, blockCount);
    MEMCPY_BCOPY(context.buffer, data + blockCount * s_blockSize64, length % s_blockSize64);
}

void sha2::SHA256_Internal_Last(bool sha1) noexcept
{
    Context32 &context = m_context.words32;
    constexpr std::size_t LengthOffset = s_blockSize32 - sizeof(Word64);
    std::size_t used = static_cast<std::size_t>(context.bitCount / 8 % s_blockSize32);
    context.buffer[used++] = PaddingStart;
    if (used > LengthOffset) // no room for the length: it goes into a block of its own
    {
        MEMSET_BZERO(context.buffer + used, s_blockSize32 - used);
        SHA32bit_Transform(context.buffer, 1, sha1);
        used = 0;
    }
    MEMSET_BZERO(context.buffer + used, LengthOffset - used);
    Word64 const bitCount = REVERSE64(context.bitCount);
    MEMCPY_BCOPY(context.buffer + LengthOffset, &bitCount, sizeof bitCount);
    SHA32bit_Transform(context.buffer, 1, sha1);
}

void sha2::SHA512_Internal_Last() noexcept
{
    Context64 &context = m_context.words64;
    constexpr std::size_t LengthOffset = s_blockSize64 - 2 * sizeof(Word64);
    std::size_t used = static_cast<std::size_t>(context.bitCount[0] / 8 % s_blockSize64);
    context.buffer[used++] = PaddingStart;
    if (used > LengthOffset)
    {
        MEMSET_BZERO(context.buffer + used, s_blockSize64 - used);
        SHA512_Internal_Transform(context.buffer, 1);
        used = 0;
    }
    MEMSET_BZERO(context.buffer + used, LengthOffset - used);
    Word64 const bitCount[2] = {REVERSE64(context.bitCount[1]), REVERSE64(context.bitCount[0])};
    MEMCPY_BCOPY(context.buffer + LengthOffset, bitCount, sizeof bitCount);
    SHA512_Internal_Transform(context.buffer, 1);
}

void sha2::WriteDigest32(std::size_t wordCount) noexcept
{
    for (std::size_t index = 0; index < wordCount; ++index)
    {
        Word32 const word = REVERSE32(m_context.words32.state[index]);
        MEMCPY_BCOPY(m_digest.data() + index * sizeof word, &word, sizeof word);
    }
}

void sha2::WriteDigest64() noexcept
{
    for (std::size_t index = 0; index < 8; ++index)
    {
        Word64 const word = REVERSE64(m_context.words64.state[index]);
        MEMCPY_BCOPY(m_digest.data() + index * sizeof word, &word, sizeof word);
    }
}

void sha2::FormatHexText(std::size_t digestSize) noexcept
{
    constexpr char Digits[] = "0123456789abcdef";
    char *text = m_hexText.data();
    for (std::size_t index = 0; index < digestSize; ++index)
    {
        *text++ = Digits[m_digest[index] >> 4];
        *text++ = Digits[m_digest[index] & 0x0f];
    }
    *text = '\0';
}
