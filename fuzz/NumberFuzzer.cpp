// The readers agree with std::from_chars, and what is printed reads back.

#include "FuzzInput.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <system_error>

using fuzz::FuzzInput;
using fuzz::Require;

namespace
{

bool takeSign(std::string_view &bytes)
{
    if (bytes.empty() || (bytes.front() != '+' && bytes.front() != '-'))
        return false;
    bool const negative = bytes.front() == '-';
    bytes.remove_prefix(1);
    return negative;
}

template <class Integer>
void checkInteger(std::string_view bytes, int base, Integer actual, bool ok)
{
    using Limits = std::numeric_limits<Integer>;
    bool const negative = takeSign(bytes);
    if (base == 16 && bytes.size() > 2 && bytes[0] == '0' && (bytes[1] | 0x20) == 'x')
        bytes.remove_prefix(2);

    unsigned long long magnitude = 0;
    char const *const end = bytes.data() + bytes.size();
    auto const [stop, error] = std::from_chars(bytes.data(), end, magnitude, base);
    if (bytes.empty() || stop != end)
    {
        Require(!ok && actual == 0);
        return;
    }
    auto const limit = static_cast<unsigned long long>(Limits::max()) + (Limits::is_signed && negative);
    if (negative && !Limits::is_signed && (magnitude > 0 || error != std::errc()))
        Require(!ok && actual == 0);
    else if (error != std::errc() || magnitude > limit)
        Require(!ok && actual == (negative ? Limits::min() : Limits::max()));
    else
        Require(ok && static_cast<unsigned long long>(actual) == (negative ? 0 - magnitude : magnitude));
}

template <class Float>
void checkFloat(std::string_view bytes, Float actual, bool ok)
{
    bool const negative = takeSign(bytes);
    char const *const end = bytes.data() + bytes.size();
    Float expected = 0;
    auto const [stop, error] = std::from_chars(bytes.data(), end, expected);
    // It reads a second minus sign, and what some put in brackets behind "nan".
    bool const isNumber =
        !bytes.empty() && stop == end && bytes.front() != '-' && bytes.find('(') == std::string_view::npos;
    if (!isNumber)
        Require(!ok && actual == 0);
    else if (error == std::errc::result_out_of_range)
        Require(std::isinf(actual) ? !ok : std::fabs(actual) < 1);
    else if (std::isnan(expected))
        Require(ok && std::isnan(actual));
    else
        Require(ok && actual == expected * (negative ? -1 : 1));
}

void checkReaders(std::string_view bytes, int base)
{
    TStringCore const text = TStringCore::fromLatin1(bytes.data(), static_cast<int>(bytes.size()));
    bool ok = false;
    auto const shortValue = text.toShort(&ok, base);
    checkInteger(bytes, base, shortValue, ok);
    auto const intValue = text.toInt(&ok, base);
    checkInteger(bytes, base, intValue, ok);
    auto const unsignedValue = text.toUInt(&ok, base);
    checkInteger(bytes, base, unsignedValue, ok);
    auto const longLongValue = text.toLongLong(&ok, base);
    checkInteger(bytes, base, longLongValue, ok);
    auto const unsignedLongLongValue = text.toULongLong(&ok, base);
    checkInteger(bytes, base, unsignedLongLongValue, ok);

    auto const doubleValue = text.toDouble(&ok);
    checkFloat(bytes, doubleValue, ok);
    Require((text.leftDoubleLength() == text.length() && !text.isEmpty()) == (ok || std::isinf(doubleValue)));
    auto const floatValue = text.toFloat(&ok);
    checkFloat(bytes, floatValue, ok);
}

void checkPrinting(long long integer, double number, int base)
{
    bool ok = false;
    Require(TStringCore::number(integer, base).toLongLong(&ok, base) == integer && ok);

    double const read = TStringCore::number(number, 'e', 17, false).toDouble(&ok);
    Require(ok && (std::isnan(number) ? std::isnan(read) : read == number));
    char expected[32];
    auto const end =
        std::to_chars(expected, expected + sizeof expected, number, std::chars_format::general, 6).ptr;
    if (std::isfinite(number) && number != 0)
        Require(TStringCore::number(number, 'g', 6, false).toStdString() == std::string(expected, end));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    FuzzInput input(data, size);
    int const base = input.TakeInt(2, 36);
    std::string_view const bytes = input.TakeRest();
    checkReaders(bytes, base);

    long long integer = 0;
    double number = 0;
    if (bytes.size() >= sizeof integer)
    {
        std::memcpy(&integer, bytes.data(), sizeof integer);
        std::memcpy(&number, bytes.data(), sizeof number);
        checkPrinting(integer, number, base);
    }
    return 0;
}
