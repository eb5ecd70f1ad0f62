#include "vansys/TScanStringCore.h"

#include "main/vansys/string/UnitSet.h"
#include "vansys/TCType.h"
#include "vansys/ThrowLogicException.h"

#include <algorithm>
#include <cstdint>

using vansys::detail::StringStorage;
using vansys::detail::TwinText;
using vansys::detail::UnitSet;

namespace
{

constexpr TCodeUnit Empty[] = {0};
constexpr TCodeUnit LineFeed = u'\n';
constexpr TCodeUnit CarriageReturn = u'\r';

[[noreturn]] void fail(char const *message)
{
    throw TScanStringCore::Exception(message);
}

void checkInput(TCodeUnit const *input)
{
    if (!input)
        ThrowLogicException("vansys/main/vansys/TScanStringCore", 223, "m_input");
}

TCodeUnit const *orEmpty(TCodeUnit const *text)
{
    return text ? text : Empty;
}

/// The length of the units that `accepts` is true for, up to the terminator.
template <class Accepts>
int lengthWhile(TCodeUnit const *text, Accepts accepts)
{
    TCodeUnit const *const begin = orEmpty(text);
    TCodeUnit const *end = begin;
    while (*end && accepts(*end))
        ++end;
    return StringStorage::checkedLength(end - begin);
}

/// How much of the text a number can take up, so that measuring one does not walk through all that follows.
/// Two units at least where the text has them: base 0 asks whether there are two.
int lengthForNumber(TCodeUnit const *text)
{
    int const length = lengthWhile(text,
                                   [](TCodeUnit unit)
                                   {
                                       TCodeUnit const folded = unit | 0x20;
                                       return (folded >= u'0' && folded <= u'9') ||
                                              (folded >= u'a' && folded <= u'z') || unit == u'+' ||
                                              unit == u'-' || unit == u'.';
                                   });
    return length < 2 ? TScanStringCore::lengthString(text, 2) : length;
}

int integerLength(TCodeUnit const *text, int base)
{
    return TStringCore::leftIntegerLength(text, lengthForNumber(text), base);
}

int floatLength(TCodeUnit const *text)
{
    return TStringCore::leftDoubleLength(text, lengthForNumber(text));
}

/// The integer that the text begins with.
TStringCore integerText(TCodeUnit const *text, int base)
{
    int const length = integerLength(text, base);
    if (length == 0)
        fail("TScanStringCore::readInt: Integer value not found.");
    return TStringCore(text, length);
}

/// The value of an integer that has been measured with the base.
template <class Integer>
Integer integerOf(TStringCore const &text, int base, Integer min, Integer max,
                  Integer (TStringCore::*convert)(bool *, int) const)
{
    // A single digit has no prefix that base 0 could ask for, and the reader refuses to look for one.
    int const readBase = base == 0 && text.length() == 1 ? 10 : base;
    bool ok = false;
    Integer const value = (text.*convert)(&ok, readBase);
    if (!ok || value < min || value > max)
        fail("TScanStringCore::readInt: Integer value out of range.");
    return value;
}

/// Measures twin text by its units.
template <class Measure>
int measureTwin(TWideTwin const *text, Measure measure)
{
    TwinText const twin(text);
    return twin.position(measure(twin.units()));
}

} // namespace

// Measuring

int TScanStringCore::lengthAnyOf(TCodeUnit const *text, Text const &set)
{
    UnitSet const units(set.units(), set.length());
    return lengthWhile(text, [&](TCodeUnit unit) { return units.contains(unit); });
}

int TScanStringCore::lengthAnyNotOf(TCodeUnit const *text, Text const &set)
{
    UnitSet const units(set.units(), set.length());
    return lengthWhile(text, [&](TCodeUnit unit) { return !units.contains(unit); });
}

int TScanStringCore::lengthWhitespace(TCodeUnit const *text)
{
    return lengthWhile(text, [](TCodeUnit unit) { return TCType::isSpace(unit); });
}

int TScanStringCore::lengthNonWhitespace(TCodeUnit const *text)
{
    return lengthWhile(text, [](TCodeUnit unit) { return !TCType::isSpace(unit); });
}

int TScanStringCore::lengthString(TCodeUnit const *text, int count)
{
    if (count < 0)
        return TStringCore::length(text);
    return lengthWhile(text, [&count](TCodeUnit) { return count-- > 0; });
}

int TScanStringCore::lengthLine(TCodeUnit const *text)
{
    return lengthWhile(text, [](TCodeUnit unit) { return unit != LineFeed; });
}

int TScanStringCore::lengthNewline(TCodeUnit const *text)
{
    TCodeUnit const *const units = orEmpty(text);
    if (units[0] == 0)
        return 0;
    if (units[0] != LineFeed && units[0] != CarriageReturn)
        fail("TScanStringCore::lengthNewLine: No new line found.");
    return units[1] == (units[0] == LineFeed ? CarriageReturn : LineFeed) ? 2 : 1;
}

int TScanStringCore::lengthBool(TCodeUnit const *text)
{
    for (TStringCore const word : {"1", "0", "true", "false", "yes", "no"})
    {
        if (TStringCore::compareN(text, word, word.length(), TStringCore::CaseInsensitive) == 0)
            return word.length();
    }
    fail("TScanStringCore::lengthBool: Boolean value not found.");
}

int TScanStringCore::lengthInt(TCodeUnit const *text, int base)
{
    int const length = integerLength(text, base);
    if (length == 0)
        fail("TScanStringCore::lengthInt: Integer value not found.");
    return length;
}

int TScanStringCore::lengthFloat(TCodeUnit const *text)
{
    int const length = floatLength(text);
    if (length == 0)
        fail("TScanStringCore::lengthFloat: Float value not found.");
    return length;
}

int TScanStringCore::lengthAnyOf(TWideTwin const *text, Text const &set)
{
    return measureTwin(text, [&](TCodeUnit const *units) { return lengthAnyOf(units, set); });
}

int TScanStringCore::lengthAnyNotOf(TWideTwin const *text, Text const &set)
{
    return measureTwin(text, [&](TCodeUnit const *units) { return lengthAnyNotOf(units, set); });
}

int TScanStringCore::lengthWhitespace(TWideTwin const *text)
{
    return measureTwin(text, [](TCodeUnit const *units) { return lengthWhitespace(units); });
}

int TScanStringCore::lengthNonWhitespace(TWideTwin const *text)
{
    return measureTwin(text, [](TCodeUnit const *units) { return lengthNonWhitespace(units); });
}

int TScanStringCore::lengthString(TWideTwin const *text, int count)
{
    int const length = TStringCore::length(text);
    return count < 0 ? length : std::min(count, length);
}

int TScanStringCore::lengthLine(TWideTwin const *text)
{
    return measureTwin(text, [](TCodeUnit const *units) { return lengthLine(units); });
}

int TScanStringCore::lengthNewline(TWideTwin const *text)
{
    return measureTwin(text, [](TCodeUnit const *units) { return lengthNewline(units); });
}

int TScanStringCore::lengthBool(TWideTwin const *text)
{
    return measureTwin(text, [](TCodeUnit const *units) { return lengthBool(units); });
}

int TScanStringCore::lengthInt(TWideTwin const *text, int base)
{
    return measureTwin(text, [base](TCodeUnit const *units) { return lengthInt(units, base); });
}

int TScanStringCore::lengthFloat(TWideTwin const *text)
{
    return measureTwin(text, [](TCodeUnit const *units) { return lengthFloat(units); });
}

// The cursor

TScanStringCore::TScanStringCore(TCodeUnit const *text) : m_input(text)
{
    checkInput(m_input);
}

TScanStringCore &TScanStringCore::reset()
{
    checkInput(m_input);
    m_cursor = 0;
    return *this;
}

TCodeUnit const *TScanStringCore::rest() const noexcept
{
    return orEmpty(m_input) + m_cursor;
}

int TScanStringCore::cursorBehind(std::int64_t length) const
{
    return StringStorage::checkedLength(m_cursor + length);
}

TScanStringCore &TScanStringCore::advance(int length)
{
    m_cursor = cursorBehind(length);
    return *this;
}

TScanStringCore &TScanStringCore::skip(Text const &expected)
{
    TCodeUnit const *const text = rest();
    for (int i = 0; i < expected.length(); ++i)
    {
        // A zero that is expected is no match for the terminator: it would lead beyond.
        if (text[i] != expected.units()[i] || text[i] == 0)
            fail("TScanStringCore::skip: String mismatch.");
    }
    return advance(expected.length());
}

TScanStringCore &TScanStringCore::end()
{
    if (*rest() != 0)
        fail("TScanStringCore::end(): Expected null character.");
    return *this;
}

// Reading. What can fail comes first, then the output and the cursor change.

TScanStringCore &TScanStringCore::read(TStringCore &out, int length)
{
    int const cursor = cursorBehind(length);
    out.assign(rest(), length);
    m_cursor = cursor;
    return *this;
}

TScanStringCore &TScanStringCore::readLine(TStringCore &out)
{
    int const length = lengthLine(rest());
    int const cursor = cursorBehind(std::int64_t{length} + lengthNewline(rest() + length));
    out.assign(rest(), length);
    m_cursor = cursor;
    return *this;
}

TScanStringCore &TScanStringCore::readBool(bool &out)
{
    TCodeUnit const first = *rest() | 0x20;
    advance(lengthBool(rest()));
    out = first == u'1' || first == u't' || first == u'y';
    return *this;
}

void TScanStringCore::readInteger(long long &out, long long min, long long max, int base)
{
    TStringCore const text = integerText(rest(), base);
    long long const value = integerOf(text, base, min, max, &TStringCore::toLongLong);
    advance(text.length());
    out = value;
}

void TScanStringCore::readInteger(unsigned long long &out, unsigned long long min, unsigned long long max,
                                  int base)
{
    TStringCore const text = integerText(rest(), base);
    unsigned long long const value = integerOf(text, base, min, max, &TStringCore::toULongLong);
    advance(text.length());
    out = value;
}

TScanStringCore &TScanStringCore::readFloat(float &out)
{
    int const length = floatLength(rest());
    if (length == 0)
        fail("TScanStringCore::readFloat: Float value not found.");
    float const value = TStringCore(rest(), length).toFloat();
    advance(length);
    out = value;
    return *this;
}

TScanStringCore &TScanStringCore::readFloat(double &out)
{
    int const length = floatLength(rest());
    if (length == 0)
        fail("TScanStringCore::readDouble: Float value not found.");
    double const value = TStringCore(rest(), length).toDouble();
    advance(length);
    out = value;
    return *this;
}

// Exception

TScanStringCore::Exception::Exception(TStringCore const &message) : VantrelException(message) {}

TScanStringCore::Exception::~Exception() = default;

TScanStringCore::Exception *TScanStringCore::Exception::Clone() const
{
    return new Exception(*this);
}

void TScanStringCore::Exception::Throw() const
{
    throw Exception(*this);
}
