#include "main/vansys/string/Utf.h"

#include "main/vansys/string/UnitVector.h"

#include <bit>
#include <cstring>

// Each direction has a plain loop that takes one sequence or code point after the other and defines the
// result, and a fast one around the same step. The fast one takes text in blocks of 64: the vector unit finds
// what is not ASCII in all of them, so that the way from one such place to the next is a matter of bits and
// does not wait for memory; the runs between are copied in whole vectors, and well-formed sequences of two
// and three bytes go without the general checks. Everything else, malformed text above all, is left to the
// plain step, so that it is dealt with in one place.

namespace vansys::detail
{

namespace
{

constexpr int VectorUnits = 16; // elements that are converted at once: a vector of bytes, and two of units
constexpr int BlockUnits = 64;

/// Continuation bytes by (lead byte - 0x80) / 2; -1 for a byte that cannot lead.
constexpr signed char ContinuationCounts[64] = {
    -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, // 0x80
    -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, // 0xA0
    1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  // 0xC0
    2,  2,  2,  2,  2,  2,  2,  2,  3,  3,  3,  3,  4,  4,  5,  -1, // 0xE0
};

constexpr bool IsContinuation(unsigned char byte) noexcept
{
    return (byte & 0xC0) == 0x80;
}

/// Decodes what begins at `text`, which is before `end`. Moves both positions on.
inline void DecodeStep(unsigned char const *&text, unsigned char const *end, TCodeUnit *&out) noexcept
{
    unsigned char const lead = *text++;
    if (lead < 0x80)
    {
        *out++ = lead;
        return;
    }
    int const continuations = ContinuationCounts[(lead - 0x80) / 2];
    // `text` is behind the lead already, so a sequence whose last byte lies at `end` itself passes.
    if (continuations < 0 || continuations > end - text + 1)
    {
        *out++ = ReplacementCharacter;
        return;
    }
    std::uint32_t value = lead & (0x3Fu >> continuations);
    for (int i = 0; i < continuations; ++i)
    {
        if (!IsContinuation(*text))
        {
            *out++ = ReplacementCharacter;
            return;
        }
        value = value << 6 | (*text++ & 0x3Fu);
    }
    out = PutCodePoint(value, out);
}

template <class Integer>
Integer Load(unsigned char const *from) noexcept
{
    Integer result;
    std::memcpy(&result, from, sizeof result);
    return result;
}

/// Decodes sequences up to the next ASCII byte. At least four bytes lie between `text` and `end`.
inline void DecodeRun(unsigned char const *&text, unsigned char const *end, TCodeUnit *&out) noexcept
{
    do
    {
        // The lead byte and its continuation bytes are checked in one go, as the little-endian numbers that
        // they are on every target.
        auto const four = Load<std::uint32_t>(text);
        if ((four & 0xC0C0F0) == 0x8080E0)
        {
            *out++ = static_cast<TCodeUnit>((four & 0x0F) << 12 | (four >> 2 & 0xFC0) | (four >> 16 & 0x3F));
            text += 3;
        }
        else if ((four & 0xC0E0) == 0x80C0)
        {
            *out++ = static_cast<TCodeUnit>((four & 0x1F) << 6 | (four >> 8 & 0x3F));
            text += 2;
        }
        else
            DecodeStep(text, end, out);
    } while (end - text >= 4 && *text >= 0x80);
}

/// Decodes a sequence of two bytes if there is one, and takes its bits from the lowest of `others`.
/// At least two bytes lie behind `text`.
inline bool DecodeTwoBytes(unsigned char const *&text, TCodeUnit *&out, std::uint64_t &others) noexcept
{
    auto const two = Load<std::uint16_t>(text);
    if ((two & 0xC0E0) != 0x80C0)
        return false;
    *out++ = static_cast<TCodeUnit>((two & 0x1F) << 6 | (two >> 8 & 0x3F));
    text += 2;
    others &= others - 1;
    others &= others - 1; // none is left when the second byte belongs to the next block
    return true;
}

/// Encodes one code point; `text` is before `end`. Moves both positions on.
inline void EncodeStep(TCodeUnit const *&text, TCodeUnit const *end, char *&out) noexcept
{
    auto const put = [&out](std::uint32_t byte) { *out++ = static_cast<char>(byte); };
    std::uint32_t const value = TakeCodePoint(text, end);
    if (value < 0x80)
    {
        put(value);
        return;
    }
    if (value < 0x800)
        put(0xC0 | value >> 6);
    else
    {
        if (value < 0x10000)
            put(0xE0 | value >> 12);
        else
        {
            put(0xF0 | value >> 18);
            put(0x80 | (value >> 12 & 0x3F));
        }
        put(0x80 | (value >> 6 & 0x3F));
    }
    put(0x80 | (value & 0x3F));
}

inline void Store(char *to, std::uint32_t value) noexcept
{
    std::memcpy(to, &value, sizeof value);
}

/// Encodes a unit that makes two bytes, if it is one, and takes its bit from the lowest of `others`. There is
/// room to store four bytes.
inline bool EncodeTwoBytes(TCodeUnit const *&text, char *&out, std::uint64_t &others) noexcept
{
    std::uint32_t const unit = *text;
    if (unit >= 0x800)
        return false;
    Store(out, 0x80C0 | unit >> 6 | (unit & 0x3F) << 8);
    out += 2;
    ++text;
    others &= others - 1;
    return true;
}

/// Encodes code points up to the next ASCII unit. Every unit makes at least one byte, and at least four units
/// lie between `text` and `end`: there is room to store four bytes where fewer count.
inline void EncodeRun(TCodeUnit const *&text, TCodeUnit const *end, char *&out) noexcept
{
    do
    {
        std::uint32_t const unit = *text;
        if (unit < 0x80)
            return;
        if (unit < 0x800)
        {
            Store(out, 0x80C0 | unit >> 6 | (unit & 0x3F) << 8);
            out += 2;
            ++text;
        }
        else if ((unit & 0xF800) != 0xD800)
        {
            Store(out, 0x8080E0 | unit >> 12 | (unit << 2 & 0x3F00) | (unit & 0x3F) << 16);
            out += 3;
            ++text;
        }
        else
            EncodeStep(text, end, out);
    } while (end - text >= 4);
}

/// A bit for each of 16 elements that is not ASCII.
inline std::uint32_t OthersInVector(unsigned char const *text) noexcept
{
    return OtherThanAscii(LoadBytes(text));
}

inline std::uint32_t OthersInVector(TCodeUnit const *text) noexcept
{
    return OtherThanAscii(LoadUnits(text), LoadUnits(text + LanesOfVector));
}

/// Whether 32 elements are ASCII.
inline bool Are32Ascii(unsigned char const *text) noexcept
{
    return OtherThanAscii(LoadBytes(text) | LoadBytes(text + BytesOfVector)) == 0;
}

inline bool Are32Ascii(TCodeUnit const *text) noexcept
{
    return AreAscii((LoadUnits(text) | LoadUnits(text + LanesOfVector)) |
                    (LoadUnits(text + 2 * LanesOfVector) | LoadUnits(text + 3 * LanesOfVector)));
}

/// Converts 16 elements as if all were ASCII.
inline void CopyVector(unsigned char const *text, TCodeUnit *out) noexcept
{
    StoreWidened(out, LoadBytes(text));
}

inline void CopyVector(TCodeUnit const *text, char *out) noexcept
{
    StoreBytes(out, Narrow(LoadUnits(text), LoadUnits(text + LanesOfVector)));
}

/// A bit for each of 64 elements that is not ASCII.
template <class From>
std::uint64_t OthersInBlock(From const *text) noexcept
{
    return std::uint64_t{OthersInVector(text)} | std::uint64_t{OthersInVector(text + VectorUnits)} << 16 |
           std::uint64_t{OthersInVector(text + 2 * VectorUnits)} << 32 |
           std::uint64_t{OthersInVector(text + 3 * VectorUnits)} << 48;
}

/// Converts `count` ASCII elements, in whole vectors: reads and writes up to 15 elements too many.
template <class From, class To>
void CopyAscii(From const *text, std::ptrdiff_t count, To *out) noexcept
{
    CopyVector(text, out); // by far the most runs are done with this
    for (std::ptrdiff_t done = VectorUnits; done < count; done += VectorUnits)
        CopyVector(text + done, out + done);
}

/// Converts ASCII elements while there are 32 at a time. Moves both positions on.
template <class From, class To>
void CopyWhileAscii(From const *&text, From const *end, To *&out) noexcept
{
    constexpr int Step = 2 * VectorUnits;
    for (; end - text >= Step && Are32Ascii(text); text += Step, out += Step)
    {
        CopyVector(text, out);
        CopyVector(text + VectorUnits, out + VectorUnits);
    }
}

/// The loop of both directions. What is not ASCII goes, in this order, to
/// - `twoBytes(text, out, others)`: converts what takes two bytes, or says that this is something else;
/// - `run(text, end, out)`: converts up to the next ASCII element or a little further;
/// - `step(text, end, out)`: at the end of the text, converts one sequence or code point of any kind.
template <class From, class To, class TwoBytes, class Run, class Step>
To *Convert(From const *text, From const *end, To *out, TwoBytes const &twoBytes, Run const &run,
            Step const &step) noexcept
{
    From const *const begin = text;
    // Beyond a block there is always one more vector, so that copies may run over. As each element gives at
    // least one (encoding) or at most one (decoding), what is left of the room is never less than that.
    while (end - text >= BlockUnits + VectorUnits)
    {
        From const *const block = text;
        std::uint64_t others = OthersInBlock(block);
        if (others == 0)
        {
            CopyWhileAscii(text, end, out);
            continue;
        }
        while (others != 0)
        {
            From const *const next = block + std::countr_zero(others);
            CopyAscii(text, next - text, out);
            out += next - text;
            text = next;
            if (twoBytes(text, out, others))
                continue;
            run(text, end, out);
            std::ptrdiff_t const taken = text - block;
            others = taken < BlockUnits ? others & ~std::uint64_t{0} << taken : 0;
        }
        std::ptrdiff_t const rest = block + BlockUnits - text;
        if (rest > 0)
        {
            CopyAscii(text, rest, out);
            text += rest;
            out += rest;
        }
    }
    while (end - text >= VectorUnits)
    {
        std::uint32_t const others = OthersInVector(text);
        int const ascii = others ? std::countr_zero(others) : VectorUnits;
        CopyVector(text, out);
        text += ascii;
        out += ascii;
        if (others)
            step(text, end, out);
    }
    // Most text ends in ASCII: one more vector ends with it. What it begins with has been converted before,
    // element by element, so that converting it again changes nothing.
    if (text < end && end - begin >= VectorUnits && OthersInVector(end - VectorUnits) == 0)
    {
        std::ptrdiff_t const rest = end - text;
        CopyVector(end - VectorUnits, out + rest - VectorUnits);
        return out + rest;
    }
    while (text < end)
        step(text, end, out);
    return out;
}

} // namespace

TCodeUnit *DecodeUtf8BySequence(char const *bytes, int count, TCodeUnit *out) noexcept
{
    auto const *text = reinterpret_cast<unsigned char const *>(bytes);
    auto const *const end = text + count;
    while (text < end)
        DecodeStep(text, end, out);
    return out;
}

TCodeUnit *DecodeUtf8(char const *bytes, int count, TCodeUnit *out) noexcept
{
    auto const *text = reinterpret_cast<unsigned char const *>(bytes);
    auto const *const end = text + count;
    // The units of a string's block begin 12 bytes behind an aligned address. Long ASCII text is worth a few
    // single steps, after which no vector is stored across two cache lines.
    if (count >= BlockUnits + VectorUnits)
    {
        while (*text < 0x80 && reinterpret_cast<std::uintptr_t>(out) % BytesOfVector != 0)
            DecodeStep(text, end, out);
    }
    return Convert(
        text, end, out, [](auto &...state) { return DecodeTwoBytes(state...); },
        [](auto &...positions) { DecodeRun(positions...); },
        [](auto &...positions) { DecodeStep(positions...); });
}

int EncodeAsciiPrefix(TCodeUnit const *text, int count, char *out) noexcept
{
    TCodeUnit const *const begin = text;
    TCodeUnit const *const end = text + count;
    CopyWhileAscii(text, end, out);
    while (text < end && *text < 0x80)
        EncodeStep(text, end, out);
    return static_cast<int>(text - begin);
}

char *EncodeUtf8ByCodePoint(TCodeUnit const *text, int count, char *out) noexcept
{
    TCodeUnit const *const end = text + count;
    while (text < end)
        EncodeStep(text, end, out);
    return out;
}

char *EncodeUtf8(TCodeUnit const *text, int count, char *out) noexcept
{
    return Convert(
        text, text + count, out, [](auto &...state) { return EncodeTwoBytes(state...); },
        [](auto &...positions) { EncodeRun(positions...); },
        [](auto &...positions) { EncodeStep(positions...); });
}

} // namespace vansys::detail
