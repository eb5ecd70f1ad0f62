// Text to numbers.

#include "vansys/TStringCore.h"

#include <array>
#include <cfloat>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>
#include <system_error>
#include <type_traits>

using vansys::NumberFunctions;
using vansys::detail::StringStorage;

namespace
{

/// The end of text that is zero-terminated: none that a pointer would come to. A zero unit is part of no
/// number, so reading stops there, without looking at what may follow the number.
constexpr TCodeUnit const *AtZero = nullptr;

TCodeUnit const *EndOf(TCodeUnit const *text, int length)
{
    return length < 0 ? AtZero : text + length;
}

/// Makes a letter lower case. Other units change too, but none becomes a letter.
constexpr TCodeUnit FoldCase(TCodeUnit unit)
{
    return unit | 0x20;
}

constexpr bool IsDecimalDigit(TCodeUnit unit)
{
    return unit >= u'0' && unit <= u'9';
}

bool IsSign(TCodeUnit unit)
{
    return unit == u'+' || unit == u'-';
}

void Report(bool *ok, bool isNumber)
{
    if (ok)
        *ok = isNumber;
}

// Integers

bool HasHexPrefix(TCodeUnit const *text, TCodeUnit const *end)
{
    return text != end && text[0] == u'0' && text + 1 != end && FoldCase(text[1]) == u'x';
}

/// The base, which base 0 leaves to the text. That is not empty.
unsigned int ResolvedBase(TCodeUnit const *text, TCodeUnit const *end, int base)
{
    if (base == 0 && (end == AtZero ? text[1] != 0 : end - text >= 2))
        return text[0] != u'0' ? 10 : HasHexPrefix(text, end) ? 16 : 8;
    if (base < 2 || base > 36)
        throw TStringCore::Exception("TStringCore::parseInteger: base out of range.");
    return static_cast<unsigned int>(base);
}

/// The value of a digit in base 36; 36 for a unit that is none.
constexpr unsigned int DigitValue(TCodeUnit unit)
{
    if (IsDecimalDigit(unit))
        return unit - u'0';
    TCodeUnit const letter = FoldCase(unit);
    return letter >= u'a' && letter <= u'z' ? letter - u'a' + 10u : 36u;
}

/// What a text of digits says, as far as 64 bits hold it.
struct Magnitude
{
    std::uint64_t value = 0;
    bool isNumber = false;
    bool overflows = false;
};

/// Reads digits, which must reach to `end`.
Magnitude ReadDigits(TCodeUnit const *text, TCodeUnit const *end, unsigned int base)
{
    Magnitude result;
    result.isNumber = text != end;
    for (; text != end; ++text)
    {
        unsigned int const digit = DigitValue(*text);
        if (digit >= base)
            return {};
        result.overflows |= __builtin_mul_overflow(result.value, std::uint64_t{base}, &result.value);
        result.overflows |= __builtin_add_overflow(result.value, std::uint64_t{digit}, &result.value);
    }
    return result;
}

/// `ReadDigits` in base 10, for texts of usual length without a check for overflow.
inline Magnitude ReadDecimalDigits(TCodeUnit const *text, TCodeUnit const *end)
{
    if (text == end || end - text > std::numeric_limits<std::uint64_t>::digits10)
        return ReadDigits(text, end, 10);
    std::uint64_t value = 0;
    // By twos: jumping back costs as much as a digit.
    for (; end - text >= 2; text += 2)
    {
        unsigned int const first = text[0] - u'0', second = text[1] - u'0';
        if (first > 9 || second > 9)
            return {};
        value = value * 100 + first * 10 + second;
    }
    if (text != end)
    {
        unsigned int const last = *text - u'0';
        if (last > 9)
            return {};
        value = value * 10 + last;
    }
    return {value, true, false};
}

template <class Integer>
Integer ParseInteger(TCodeUnit const *text, TCodeUnit const *end, int base, bool &inRange)
{
    using Limits = std::numeric_limits<Integer>;
    if (text == end || *text == 0)
        return 0;
    unsigned int const radix = ResolvedBase(text, end, base);
    bool const negative = *text == u'-';
    if (IsSign(*text))
        ++text;
    Magnitude magnitude;
    if (radix == 10)
        magnitude = ReadDecimalDigits(text, end);
    else
        magnitude = ReadDigits(text + (radix == 16 && HasHexPrefix(text, end) ? 2 : 0), end, radix);
    if (!magnitude.isNumber)
        return 0;

    // The magnitude of the smallest value is one more than that of the greatest, or 0.
    std::uint64_t const limit =
        negative ? 0 - static_cast<std::uint64_t>(Limits::min()) : static_cast<std::uint64_t>(Limits::max());
    if (magnitude.overflows || magnitude.value > limit)
        return negative ? Limits::min() : Limits::max();
    inRange = true;
    return static_cast<Integer>(negative ? 0 - magnitude.value : magnitude.value);
}

template <class Integer>
Integer ReadInteger(TStringCore const &text, bool *ok, int base)
{
    bool inRange = false;
    auto const value = ParseInteger<Integer>(text.cbegin(), text.cend(), base, inRange);
    Report(ok, inRange);
    return value;
}

// Floating point

/// The parts of a text that begins with a floating-point number.
struct FloatingText
{
    enum Kind
    {
        None,
        Finite,
        Infinite,
        NotANumber,
    };

    Kind kind = None;
    bool negative = false;
    TCodeUnit const *digits = nullptr; ///< the digits, with a point among them
    TCodeUnit const *digitsEnd = nullptr;
    TCodeUnit const *end = nullptr; ///< of the number

    std::int64_t digitCount = 0;
    std::uint64_t significand = 0; ///< the number that the digits form, the lower 64 bits of it
    std::int64_t exponent = 0;     ///< the power of ten that the significand is to be multiplied with
};

bool StartsWithWord(TCodeUnit const *text, TCodeUnit const *end, std::string_view word)
{
    for (char const letter : word)
    {
        if (text == end || FoldCase(*text++) != static_cast<TCodeUnit>(letter))
            return false;
    }
    return true;
}

void ScanWord(TCodeUnit const *text, TCodeUnit const *end, FloatingText &result)
{
    if (StartsWithWord(text, end, "nan"))
    {
        result.kind = FloatingText::NotANumber;
        result.end = text + 3;
    }
    else if (StartsWithWord(text, end, "inf"))
    {
        result.kind = FloatingText::Infinite;
        result.end = text + (StartsWithWord(text, end, "infinity") ? 8 : 3);
    }
}

/// Adds the exponent, if a complete one is there.
void ScanExponent(TCodeUnit const *text, TCodeUnit const *end, FloatingText &result)
{
    // Far beyond what any number of digits can make good.
    constexpr std::int64_t Enough = 1'000'000'000'000;

    if (text == end || FoldCase(*text) != u'e')
        return;
    ++text;
    bool const negative = text != end && *text == u'-';
    if (text != end && IsSign(*text))
        ++text;
    if (text == end || !IsDecimalDigit(*text))
        return;
    std::int64_t exponent = 0;
    for (; text != end && IsDecimalDigit(*text); ++text)
    {
        if (exponent < Enough)
            exponent = exponent * 10 + (*text - u'0');
    }
    result.exponent += negative ? -exponent : exponent;
    result.end = text;
}

TCodeUnit const *ScanDigits(TCodeUnit const *text, TCodeUnit const *end, FloatingText &result)
{
    TCodeUnit const *const begin = text;
    for (; text != end && IsDecimalDigit(*text); ++text)
        result.significand = result.significand * 10 + (*text - u'0');
    result.digitCount += text - begin;
    return text;
}

FloatingText ScanFloating(TCodeUnit const *text, TCodeUnit const *end)
{
    FloatingText result;
    if (text != end && IsSign(*text))
        result.negative = *text++ == u'-';

    result.digits = text;
    text = ScanDigits(text, end, result);
    if (text != end && *text == u'.')
    {
        std::int64_t const integerDigits = result.digitCount;
        text = ScanDigits(text + 1, end, result);
        result.exponent = integerDigits - result.digitCount;
    }
    if (result.digitCount == 0)
    {
        ScanWord(result.digits, end, result);
        return result;
    }
    result.kind = FloatingText::Finite;
    result.digitsEnd = result.end = text;
    ScanExponent(text, end, result);
    return result;
}

/// 1 to 10^22, the powers that a double holds exactly.
constexpr double PowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

template <class Floating>
constexpr int MaxExactPower = 22;
template <>
constexpr int MaxExactPower<float> = 10;

// Else a product would be rounded twice.
static_assert(FLT_EVAL_METHOD == 0);

/// Digits that decide: halfway between two doubles there is no number with more.
constexpr int MaxSignificantDigits = 768;

/// The value where the significand does not hold all digits, or one operation does not give it.
///
/// std::from_chars reads a copy without a point and without needless zeros, in which digits that cannot
/// decide a tie are one digit that says whether they were zero.
template <class Floating>
Floating ConvertDigits(FloatingText const &text)
{
    char buffer[MaxSignificantDigits + 32];
    char *out = buffer;
    char *const full = buffer + MaxSignificantDigits;
    bool isInexact = false;
    int significantDigits = 0;
    for (TCodeUnit const *unit = text.digits; unit != text.digitsEnd; ++unit)
    {
        if (*unit == u'.' || (*unit == u'0' && out == buffer))
            continue;
        ++significantDigits;
        if (out != full)
            *out++ = static_cast<char>(*unit);
        else
            isInexact |= *unit != u'0';
    }
    if (out == buffer)
        return 0;
    std::int64_t exponent = text.exponent + significantDigits - (out - buffer);
    if (isInexact)
    {
        *out++ = '1';
        --exponent;
    }
    *out++ = 'e';
    out = std::to_chars(out, std::end(buffer), exponent).ptr;

    Floating value = 0;
    if (std::from_chars(buffer, out, value).ec == std::errc::result_out_of_range)
        return text.exponent + significantDigits > 0 ? std::numeric_limits<Floating>::infinity() : 0;
    return value;
}

/// The nearest value without its sign. Where the significand and a power of ten are exact, one operation
/// rounds correctly (Clinger, "How to Read Floating Point Numbers Accurately", 1990).
template <class Floating>
Floating ConvertFinite(FloatingText const &text)
{
    constexpr std::uint64_t MaxExactSignificand = std::uint64_t{1} << std::numeric_limits<Floating>::digits;
    constexpr int MaxExactDigits = std::numeric_limits<std::uint64_t>::digits10;
    if (text.digitCount <= MaxExactDigits && text.significand <= MaxExactSignificand &&
        -MaxExactPower<Floating> <= text.exponent && text.exponent <= MaxExactPower<Floating>)
    {
        auto const significand = static_cast<Floating>(text.significand);
        return text.exponent < 0 ? significand / static_cast<Floating>(PowersOfTen[-text.exponent])
                                 : significand * static_cast<Floating>(PowersOfTen[text.exponent]);
    }
    return ConvertDigits<Floating>(text);
}

template <class Floating>
Floating ReadFloating(TStringCore const &string, bool *ok)
{
    using Limits = std::numeric_limits<Floating>;
    FloatingText const text = ScanFloating(string.cbegin(), string.cend());
    if (text.end != string.cend() || text.kind == FloatingText::None)
    {
        Report(ok, false);
        return 0;
    }
    Floating const magnitude = text.kind == FloatingText::Finite     ? ConvertFinite<Floating>(text)
                               : text.kind == FloatingText::Infinite ? Limits::infinity()
                                                                     : Limits::quiet_NaN();
    Report(ok, text.kind != FloatingText::Finite || magnitude != Limits::infinity());
    return text.negative ? -magnitude : magnitude;
}

} // namespace

int NumberFunctions::leftIntegerLength(TCodeUnit const *text, int length, int base)
{
    if (!text || length == 0 || *text == 0)
        return 0;
    TCodeUnit const *const end = EndOf(text, length);
    unsigned int const radix = ResolvedBase(text, end, base);
    TCodeUnit const *digits = text;
    if (radix == 10 && IsSign(*text))
        digits += 1;
    else if (radix == 16 && HasHexPrefix(text, end))
        digits += 2;

    auto const isMeasured = [lastLetter = u'a' + radix - 11](TCodeUnit unit)
    {
        TCodeUnit const folded = FoldCase(unit);
        return IsDecimalDigit(folded) || (folded >= u'a' && folded <= lastLetter);
    };
    TCodeUnit const *digitsEnd = digits;
    while (digitsEnd != end && isMeasured(*digitsEnd))
        ++digitsEnd;
    return digitsEnd == digits ? 0 : StringStorage::checkedLength(digitsEnd - text);
}

int NumberFunctions::leftIntegerLength(TWideTwin const *text, int length, int base)
{
    vansys::detail::TwinText const twin(text, length);
    return twin.position(leftIntegerLength(twin.units(), twin.length(), base));
}

int NumberFunctions::leftDoubleLength(TCodeUnit const *text, int length)
{
    if (!text)
        return 0;
    TCodeUnit const *const end = EndOf(text, length);
    FloatingText const number = ScanFloating(text, end);
    return number.kind == FloatingText::None ? 0 : StringStorage::checkedLength(number.end - text);
}

short TStringCore::toShort(bool *ok, int base) const
{
    return ReadInteger<short>(*this, ok, base);
}

unsigned short TStringCore::toUShort(bool *ok, int base) const
{
    return ReadInteger<unsigned short>(*this, ok, base);
}

int TStringCore::toInt(bool *ok, int base) const
{
    return ReadInteger<int>(*this, ok, base);
}

unsigned int TStringCore::toUInt(bool *ok, int base) const
{
    return ReadInteger<unsigned int>(*this, ok, base);
}

long TStringCore::toLong(bool *ok, int base) const
{
    return ReadInteger<long>(*this, ok, base);
}

unsigned long TStringCore::toULong(bool *ok, int base) const
{
    return ReadInteger<unsigned long>(*this, ok, base);
}

long long TStringCore::toLongLong(bool *ok, int base) const
{
    return ReadInteger<long long>(*this, ok, base);
}

unsigned long long TStringCore::toULongLong(bool *ok, int base) const
{
    return ReadInteger<unsigned long long>(*this, ok, base);
}

float TStringCore::toFloat(bool *ok) const
{
    return ReadFloating<float>(*this, ok);
}

double TStringCore::toDouble(bool *ok) const
{
    return ReadFloating<double>(*this, ok);
}
