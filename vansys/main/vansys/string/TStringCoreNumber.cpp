// Numbers to text.

#include "main/vansys/string/StringAccess.h"
#include "vansys/TStringCore.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <string_view>
#include <utility>

using vansys::NumberFunctions;
using vansys::detail::StringAccess;
using vansys::detail::StringStorage;

namespace
{

// Integers

constexpr int MinBase = 2;
constexpr int MaxBase = 36;

constexpr char Digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";

/// "00" to "99".
constexpr auto DigitPairs = []
{
    std::array<TCodeUnit[2], 100> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i)
    {
        pairs[i][0] = static_cast<TCodeUnit>(Digits[i / 10]);
        pairs[i][1] = static_cast<TCodeUnit>(Digits[i % 10]);
    }
    return pairs;
}();

/// 1 to 10^19, the greatest that 64 bits hold.
constexpr auto PowersOfTen = []
{
    std::array<std::uint64_t, 20> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 10;
    return powers;
}();

/// How many bits the value takes; 1 for 0.
int BitCount(std::uint64_t value)
{
    return 64 - std::countl_zero(value | 1);
}

int DecimalDigitCount(std::uint64_t magnitude)
{
    std::uint64_t const positive = magnitude | 1; // has as many digits
    // 1233 / 4096 is log10(2) closely enough: the estimate is the count or one less.
    int const estimate = BitCount(positive) * 1233 >> 12;
    return estimate + (positive >= PowersOfTen[static_cast<std::size_t>(estimate)]);
}

int DigitCount(std::uint64_t magnitude, unsigned int base)
{
    if (base == 10)
        return DecimalDigitCount(magnitude);
    if (std::has_single_bit(base))
    {
        int const digitBits = std::countr_zero(base);
        return (BitCount(magnitude) + digitBits - 1) / digitBits;
    }
    int count = 1;
    for (; magnitude >= base; magnitude /= base)
        ++count;
    return count;
}

TCodeUnit *WritePair(TCodeUnit *end, std::uint32_t pair)
{
    std::memcpy(end - 2, DigitPairs[pair], sizeof DigitPairs[pair]);
    return end - 2;
}

/// Writes the digits so that the last one stands before `end`.
void WriteDecimalDigits(TCodeUnit *end, std::uint64_t magnitude)
{
    // In 32 bits as far as possible: on a 32-bit processor each 64-bit division is a call.
    while (magnitude > std::numeric_limits<std::uint32_t>::max())
    {
        auto eightDigits = static_cast<std::uint32_t>(magnitude % 100'000'000);
        magnitude /= 100'000'000;
        for (int pair = 0; pair < 4; ++pair, eightDigits /= 100)
            end = WritePair(end, eightDigits % 100);
    }
    auto rest = static_cast<std::uint32_t>(magnitude);
    for (; rest >= 100; rest /= 100)
        end = WritePair(end, rest % 100);
    if (rest >= 10)
        WritePair(end, rest);
    else
        end[-1] = static_cast<TCodeUnit>(u'0' + rest);
}

/// As `WriteDecimalDigits`, in any base.
void WriteDigits(TCodeUnit *end, std::uint64_t magnitude, unsigned int base)
{
    if (base == 10)
        return WriteDecimalDigits(end, magnitude);
    if (std::has_single_bit(base))
    {
        int const digitBits = std::countr_zero(base);
        do
            *--end = static_cast<TCodeUnit>(Digits[magnitude & (base - 1)]);
        while ((magnitude >>= digitBits) != 0);
        return;
    }
    do
        *--end = static_cast<TCodeUnit>(Digits[magnitude % base]);
    while ((magnitude /= base) != 0);
}

void WriteSignAndMagnitude(StringStorage &storage, bool negative, std::uint64_t magnitude, int base,
                           int fieldWidth, TCodeUnit fill)
{
    if (base < MinBase || base > MaxBase)
        throw TStringCore::Exception("TStringCore::number: base out of range.");
    auto const radix = static_cast<unsigned int>(base);
    int const length = DigitCount(magnitude, radix) + negative;

    // In 64 bits, because the smallest width has no counterpart.
    std::int64_t const width = std::max<std::int64_t>(std::abs(std::int64_t{fieldWidth}), length);
    TCodeUnit *begin = storage.setLengthForOverwrite(StringStorage::checkedLength(width));
    TCodeUnit *const end = begin + width;
    if (fieldWidth > length)
        begin = std::fill_n(begin, width - length, fill);
    if (negative)
        *begin = u'-';
    begin += length;
    WriteDigits(begin, magnitude, radix);
    std::fill(begin, end, fill);
}

template <class Integer>
void WriteInteger(StringStorage &storage, Integer value, int base, int fieldWidth, TCodeUnit fill)
{
    bool const negative = std::cmp_less(value, 0);
    // Unsigned, because the magnitude of the least number has no signed type.
    auto const bits = static_cast<std::uint64_t>(value);
    WriteSignAndMagnitude(storage, negative, negative ? 0 - bits : bits, base, fieldWidth, fill);
}

template <class Integer>
TStringCore IntegerText(Integer value, int base, int fieldWidth, TCodeUnit fill)
{
    TStringCore result;
    WriteInteger(StringAccess::Storage(result), value, base, fieldWidth, fill);
    return result;
}

// Floating point

/// No double has more digits than this behind the point: what follows are zeros.
constexpr int MaxPrecision = std::numeric_limits<double>::digits - std::numeric_limits<double>::min_exponent;

/// A finite number as text, on the way to its final form.
class DoubleText
{
public:
    DoubleText(double value, std::chars_format format, int precision)
    {
        m_end = std::to_chars(m_buffer, std::end(m_buffer), value, format, precision).ptr;
        m_exponent = std::find(m_begin, m_end, 'e');
    }

    /// What stands before the exponent, and the exponent, which may be empty.
    char const *begin() const { return m_begin; }
    char const *Exponent() const { return m_exponent; }
    char const *end() const { return m_end; }

    /// Makes the fraction visible: ".0" where there is no point.
    void AddFraction()
    {
        if (std::find(m_begin, m_exponent, '.') != m_exponent)
            return;
        std::copy_backward(m_exponent, m_end, m_end + 2);
        *m_exponent++ = '.';
        *m_exponent++ = '0';
        m_end += 2;
    }

    /// Removes the zeros at the end but for one behind a point. Without a point, those of the integer go.
    void RemoveTrailingZeros()
    {
        char *kept = m_exponent - 1;
        while (*kept == '0' && kept > m_begin)
            --kept;
        kept += *kept == '.' ? 2 : 1;
        m_end = std::copy(m_exponent, m_end, kept);
        m_exponent = kept;
    }

    void RemoveSignOfZero()
    {
        if (*m_begin == '-' &&
            std::all_of(m_begin + 1, m_exponent, [](char digit) { return digit == '0' || digit == '.'; }))
            ++m_begin;
    }

    void MakeUpperCase()
    {
        if (m_exponent != m_end)
            *m_exponent = 'E';
    }

private:
    // The sign, the digits of the greatest double, a fraction, and ".0".
    char m_buffer[1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + MaxPrecision + 2];
    char *m_begin = m_buffer;
    char *m_exponent;
    char *m_end;
};

void WriteDouble(StringStorage &storage, double value, char format, int precision, bool tidy)
{
    if (!std::isfinite(value))
    {
        std::string_view const word = std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
        std::copy(word.begin(), word.end(), storage.setLengthForOverwrite(static_cast<int>(word.size())));
        return;
    }

    bool const isFixed = format == 'f' || format == 'F';
    bool const isScientific = format == 'e' || format == 'E';
    bool const isGeneral = !isFixed && !isScientific;
    int const wanted = precision < 0 ? 6 : precision;

    // An exponent comes with two digits or as many more as it needs, and "g" without zeros at the end of a
    // fraction, so neither needs mending.
    DoubleText text(value,
                    isFixed        ? std::chars_format::fixed
                    : isScientific ? std::chars_format::scientific
                                   : std::chars_format::general,
                    std::min(wanted, MaxPrecision));
    int zeros = 0; // digits of the fraction that have not been printed
    if (tidy && isGeneral)
        text.AddFraction();
    else if (tidy)
        text.RemoveTrailingZeros();
    else if (!isGeneral)
        zeros = std::max(wanted - MaxPrecision, 0);
    text.RemoveSignOfZero();
    if (format == 'E' || format == 'G')
        text.MakeUpperCase();

    TCodeUnit *out = storage.setLengthForOverwrite(
        StringStorage::checkedLength(text.end() - text.begin() + std::int64_t{zeros}));
    out = std::copy(text.begin(), text.Exponent(), out);
    out = std::fill_n(out, zeros, TCodeUnit{u'0'});
    std::copy(text.Exponent(), text.end(), out);
}

} // namespace

TStringCore NumberFunctions::number(long long value, int base, int fieldWidth, TCodeUnit fill)
{
    return IntegerText(value, base, fieldWidth, fill);
}

TStringCore NumberFunctions::number(unsigned long long value, int base, int fieldWidth, TCodeUnit fill)
{
    return IntegerText(value, base, fieldWidth, fill);
}

TStringCore NumberFunctions::number(short value, int base, int fieldWidth, TCodeUnit fill)
{
    return IntegerText(value, base, fieldWidth, fill);
}

TStringCore NumberFunctions::number(unsigned short value, int base, int fieldWidth, TCodeUnit fill)
{
    return IntegerText(value, base, fieldWidth, fill);
}

TStringCore NumberFunctions::number(int value, int base, int fieldWidth, TCodeUnit fill)
{
    return IntegerText(value, base, fieldWidth, fill);
}

TStringCore NumberFunctions::number(unsigned int value, int base, int fieldWidth, TCodeUnit fill)
{
    return IntegerText(value, base, fieldWidth, fill);
}

TStringCore NumberFunctions::number(long value, int base, int fieldWidth, TCodeUnit fill)
{
    return IntegerText(value, base, fieldWidth, fill);
}

TStringCore NumberFunctions::number(unsigned long value, int base, int fieldWidth, TCodeUnit fill)
{
    return IntegerText(value, base, fieldWidth, fill);
}

TStringCore NumberFunctions::number(double value, char format, int precision, bool tidy)
{
    TStringCore result;
    WriteDouble(StringAccess::Storage(result), value, format, precision, tidy);
    return result;
}

TStringCore &TStringCore::setNum(long long value, int base)
{
    WriteInteger(m_storage, value, base, 0, u' ');
    return *this;
}

TStringCore &TStringCore::setNum(unsigned long long value, int base)
{
    WriteInteger(m_storage, value, base, 0, u' ');
    return *this;
}

TStringCore &TStringCore::setNum(double value, char format, int precision, bool tidy)
{
    WriteDouble(m_storage, value, format, precision, tidy);
    return *this;
}

TStringCore NumberFunctions::pointer(void const *address, bool prefix, bool upperCase)
{
    constexpr int Width = 2 * sizeof address;
    TStringCore digits = number(reinterpret_cast<std::uintptr_t>(address), 16, Width, u'0');
    if (upperCase)
    {
        for (TCodeUnit &digit : digits)
            digit = static_cast<TCodeUnit>(digit >= u'a' ? digit - u'a' + u'A' : digit);
    }
    return prefix ? TStringCore("0x").append(digits) : digits;
}
