/// @file
/// sha2: SHA-1 and the SHA-2 digests.
#pragma once

#include "vansys/Export.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace vansys::detail
{
struct Sha2Portable;
}

/// Computes a SHA-1, SHA-224, SHA-256, SHA-384 or SHA-512 digest (FIPS 180-4) of bytes that arrive in one
/// piece or in many, and gives it as raw bytes and as lowercase hexadecimal text.
///
/// @code
/// sha2 hash;
/// hash.Init(sha2::SHA256);
/// hash.Update(data, length); // any number of times
/// hash.End();
/// std::string text = hash.StringHash();
/// @endcode
///
/// SHA-1 is here to check existing digests: colliding messages can be made, so do not use it where somebody
/// may want to deceive. For look-up tables see THash.h, which is far cheaper.
///
/// **Life of an object.** `Init`, any number of `Update`, `End`, then reading. `Init` starts over at any
/// time. `Update` after `End` without `Init` is no error, but goes on from the padded state and gives the
/// digest of nothing useful.
///
/// **Speed.** SHA-1 and SHA-256 use the SHA instructions of the processor where it has them.
///
/// **Threads.** Different objects are independent of each other. One object must not be used by two threads
/// at the same time, except by functions that are `const`.
///
/// **Failures** are `std::runtime_error`, and leave the object as it was.
class sha2
{
public:
    /// The algorithm.
    enum SHA_TYPE : std::int32_t
    {
        NONE = 0, ///< None chosen yet; nothing can be hashed.
        SHA1 = 1,
        SHA224 = 2,
        SHA256 = 3,
        SHA384 = 4,
        SHA512 = 5
    };

    /// An object of type `NONE`, not finished, with an empty hexadecimal text.
    VANSYS_API sha2() noexcept;

    /// Copies everything, also the state in the middle of a message: both objects can go on from there. There
    /// is no cheaper move: moving copies too, so that its source still answers for its digest.
    VANSYS_API sha2(sha2 const &other);
    VANSYS_API sha2 &operator=(sha2 const &other);
    VANSYS_API ~sha2();

    /// Starts a new message. The hexadecimal text of the message before stays until `End` replaces it, but
    /// `HexHash` and `RawHash` are closed until then.
    /// @throws std::runtime_error "Invalid SHA_TYPE type!" when `type` is none of the five algorithms.
    VANSYS_API void Init(SHA_TYPE type);

    /// Adds `length` bytes to the message. `data` needs no alignment, and may be null when `length` is 0.
    /// @throws std::runtime_error "Invalid SHA_TYPE type!" when `Init` has not been called.
    VANSYS_API void Update(unsigned char const *data, unsigned int length);

    /// Ends the message and computes its digest and the hexadecimal text of it.
    /// @throws std::runtime_error "Invalid SHA_TYPE type!" when `Init` has not been called.
    VANSYS_API void End();

    /// The digest as zero-terminated lowercase hexadecimal text, valid until the object is changed.
    /// @throws std::runtime_error "Unfinished execution!" before `End`.
    VANSYS_API char const *HexHash() const;

    /// The digest as lowercase hexadecimal text. Does not check: before the first `End` the text is empty,
    /// and between `Init` and `End` it is that of the message before.
    VANSYS_API std::string const &StringHash() const noexcept;

    /// The bytes of the digest, valid until the object is changed. `length` receives their number: 20, 28,
    /// 32, 48 or 64.
    /// @throws std::runtime_error "Unfinished execution!" before `End`; `length` is left alone then.
    VANSYS_API unsigned char const *RawHash(int &length) const;

    /// `Init`, `Update` and `End` in one call. Returns `StringHash()`.
    /// @throws std::runtime_error "Invalid SHA_TYPE type!" when `type` is none of the five algorithms.
    VANSYS_API std::string const &GetHash(SHA_TYPE type, unsigned char const *data, unsigned int length);

    /// "SHA160", "SHA224", "SHA256", "SHA384" or "SHA512" (the length of the digest in bits); "Unknown!" for
    /// the type `NONE`.
    VANSYS_API char const *GetTypeString() const noexcept;

    /// The type given to the last `Init`.
    VANSYS_API SHA_TYPE GetEnumType() const noexcept;

    /// False: words are always reversed on their way between the message, which is big-endian, and a host
    /// taken to be little-endian.
    VANSYS_API bool IsBigEndian() const noexcept;

private:
    friend struct vansys::detail::Sha2Portable;

    using Word32 = std::uint32_t;
    using Word64 = std::uint64_t;

    static constexpr std::size_t s_blockSize32 = 64;
    static constexpr std::size_t s_blockSize64 = 128;
    static constexpr std::size_t s_maxDigestSize = 64;

    /// Running state of SHA-1, SHA-224 and SHA-256. SHA-1 uses the first five chaining words.
    struct Context32
    {
        Word32 state[8];
        Word64 bitCount;
        unsigned char buffer[s_blockSize32];
    };

    /// Running state of SHA-384 and SHA-512. The low word of the bit count comes first.
    struct Context64
    {
        Word64 state[8];
        Word64 bitCount[2];
        unsigned char buffer[s_blockSize64];
    };

    union Context
    {
        Context32 words32;
        Context64 words64;
    };

    // The functions that FIPS 180-4 defines, under its names where those can be told apart.
    static Word32 Ch(Word32 x, Word32 y, Word32 z) noexcept;
    static Word64 Ch(Word64 x, Word64 y, Word64 z) noexcept;
    static Word32 Maj(Word32 x, Word32 y, Word32 z) noexcept;
    static Word64 Maj(Word64 x, Word64 y, Word64 z) noexcept;
    static Word32 Parity(Word32 x, Word32 y, Word32 z) noexcept;
    static Word32 ROTL32(int count, Word32 x) noexcept;
    static Word32 ROTR32(int count, Word32 x) noexcept;
    static Word64 ROTR64(int count, Word64 x) noexcept;
    static Word32 SHR(int count, Word32 x) noexcept;
    static Word64 SHR(int count, Word64 x) noexcept;
    static Word32 Sigma0_256(Word32 x) noexcept;
    static Word32 Sigma1_256(Word32 x) noexcept;
    static Word32 sigma0_256(Word32 x) noexcept;
    static Word32 sigma1_256(Word32 x) noexcept;
    static Word64 Sigma0_512(Word64 x) noexcept;
    static Word64 Sigma1_512(Word64 x) noexcept;
    static Word64 sigma0_512(Word64 x) noexcept;
    static Word64 sigma1_512(Word64 x) noexcept;

    static Word32 REVERSE32(Word32 x) noexcept;
    static Word64 REVERSE64(Word64 x) noexcept;
    static void ADDINC128(Word64 (&counter)[2], Word64 increment) noexcept;
    static void MEMCPY_BCOPY(void *target, void const *source, std::size_t size) noexcept;
    static void MEMSET_BZERO(void *target, std::size_t size) noexcept;

    // Compress whole blocks into the chaining words.
    void SHA1_Internal_Transform(unsigned char const *blocks, std::size_t blockCount) noexcept;
    void SHA256_Internal_Transform(unsigned char const *blocks, std::size_t blockCount) noexcept;
    void SHA512_Internal_Transform(unsigned char const *blocks, std::size_t blockCount) noexcept;
    void SHA32bit_Transform(unsigned char const *blocks, std::size_t blockCount, bool sha1) noexcept;

    // `sha1` chooses between the two compressions that work on blocks of 64 bytes.
    void SHA32bit_Update(unsigned char const *data, std::size_t length, bool sha1) noexcept;
    void SHA64bit_Update(unsigned char const *data, std::size_t length) noexcept;
    void SHA256_Internal_Last(bool sha1) noexcept;
    void SHA512_Internal_Last() noexcept;

    void WriteDigest32(std::size_t wordCount) noexcept;
    void WriteDigest64() noexcept;
    void FormatHexText(std::size_t digestSize) noexcept;

    SHA_TYPE m_type = NONE;
    std::string m_hex;
    bool m_finished = false;
    bool m_bigEndian = false;
    std::array<char, 2 * s_maxDigestSize + 1> m_hexText;
    std::array<unsigned char, s_maxDigestSize> m_digest;
    Context m_context;
};
