#include "vansys/TScanStringCore.h"

#include "main/vansys/string/UnitSet.h"
#include "vansys/TCType.h"
#include "vansys/ThrowLogicException.h"

#include <cstdint>
#include <limits>

using vansys::detail::StringStorage;
using vansys::detail::TwinText;

namespace
{

constexpr TCodeUnit Empty[] = {0};
constexpr TCodeUnit LineFeed = u'\n';
constexpr TCodeUnit CarriageReturn = u'\r';

[[noreturn]] void Fail(char const *message)
{
    throw TScanStringCore::Exception(message);
}

void CheckInput(TCodeUnit const *input)
{
    if (!input)
        ThrowLogicException("vansys/main/vansys/TScanStringCore", 223, "m_input");
}

TCodeUnit const *OrEmpty(TCodeUnit const *text)
{
    return text ? text : Empty;
}

/// The length of the elements that `accepts` is true for, up to the terminator.
template <class Element, class Accepts>
int LengthWhile(Element const *text, Accepts accepts)
{
    Element const *end = text;
    while (end && *end && accepts(*end))
        ++end;
    return StringStorage::checkedLength(end - text);
}

/// The length of the elements that are in the set, or that are not.
int LengthOfMembers(TCodeUnit const *text, TScanStringCore::Text const &set, bool areMembers)
{
    return vansys::detail::WithSet(set,
                                   [&](auto const &members)
                                   {
                                       TCodeUnit const *next = OrEmpty(text);
                                       TCodeUnit const *const begin = next;
                                       while (*next)
                                       {
                                           // A zero behind a surrogate is no partner: there is no need to
                                           // know the end.
                                           int const length = members.LengthAt(next, nullptr);
                                           if (members.Contains(next, length) != areMembers)
                                               break;
                                           next += length;
                                       }
                                       return StringStorage::checkedLength(next - begin);
                                   });
}

/// The length of an integer with a sign in front of it. `lengthInt` measures one in base 10 only; the readers
/// of numbers take one in every base.
int SignedIntegerLength(TCodeUnit const *text, int base)
{
    int const sign = base != 10 && base != 0 && (*text == u'+' || *text == u'-');
    int const length = TStringCore::leftIntegerLength(text + sign, -1, base);
    return length == 0 ? 0 : StringStorage::checkedLength(std::int64_t{sign} + length);
}

/// The integer that the text begins with.
TStringCore IntegerText(TCodeUnit const *text, int base)
{
    int const length = SignedIntegerLength(text, base);
    if (length == 0)
        Fail("TScanStringCore::readInt: Integer value not found.");
    return TStringCore(text, length);
}

/// The value of an integer that has been measured with the base.
template <class Integer>
Integer IntegerOf(TStringCore const &text, int base, Integer min, Integer max,
                  Integer (TStringCore::*convert)(bool *, int) const)
{
    // A single digit has no prefix that base 0 could ask for, and the reader refuses to look for one.
    int const readBase = base == 0 && text.length() == 1 ? 10 : base;
    bool ok = false;
    Integer const value = (text.*convert)(&ok, readBase);
    if (!ok || value < min || value > max)
        Fail("TScanStringCore::readInt: Integer value out of range.");
    return value;
}

/// Measures text of the other wide type by its units, of which it makes about as many as the item has: what
/// follows may be long, and be measured item by item.
template <class Measure>
int MeasureTwin(TWideTwin const *text, Measure measure)
{
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
        return measure(reinterpret_cast<TCodeUnit const *>(text));

    // What comes behind so many units does not matter: "inf" looks as far as "infinity" to know its end.
    constexpr int Lookahead = 8;
    for (int count = 64;; count = count <= std::numeric_limits<int>::max() / 2 ? count * 2 : -1)
    {
        int const present = TScanStringCore::lengthString(text, count);
        TwinText const twin(text, present);
        int const length = measure(twin.units());
        if (present != count || twin.length() - length >= Lookahead)
            return twin.position(length);
    }
}

} // namespace

// Measuring

int TScanStringCore::lengthAnyOf(TCodeUnit const *text, Text const &set)
{
    return LengthOfMembers(text, set, true);
}

int TScanStringCore::lengthAnyNotOf(TCodeUnit const *text, Text const &set)
{
    return LengthOfMembers(text, set, false);
}

int TScanStringCore::lengthWhitespace(TCodeUnit const *text)
{
    return LengthWhile(text, [](TCodeUnit unit) { return TCType::isSpace(unit); });
}

int TScanStringCore::lengthNonWhitespace(TCodeUnit const *text)
{
    return LengthWhile(text, [](TCodeUnit unit) { return !TCType::isSpace(unit); });
}

int TScanStringCore::lengthString(TCodeUnit const *text, int count)
{
    if (count < 0)
        return TStringCore::length(text);
    return LengthWhile(text, [&count](TCodeUnit) { return count-- > 0; });
}

int TScanStringCore::lengthLine(TCodeUnit const *text)
{
    return LengthWhile(text, [](TCodeUnit unit) { return unit != LineFeed; });
}

int TScanStringCore::lengthNewline(TCodeUnit const *text)
{
    TCodeUnit const *const units = OrEmpty(text);
    if (units[0] == 0)
        return 0;
    if (units[0] != LineFeed && units[0] != CarriageReturn)
        Fail("TScanStringCore::lengthNewLine: No new line found.");
    return units[1] == (units[0] == LineFeed ? CarriageReturn : LineFeed) ? 2 : 1;
}

int TScanStringCore::lengthBool(TCodeUnit const *text)
{
    for (TStringCore const word : {"1", "0", "true", "false", "yes", "no"})
    {
        if (TStringCore::compareN(text, word, word.length(), TStringCore::CaseInsensitive) == 0)
            return word.length();
    }
    Fail("TScanStringCore::lengthBool: Boolean value not found.");
}

int TScanStringCore::lengthInt(TCodeUnit const *text, int base)
{
    int const length = TStringCore::leftIntegerLength(text, -1, base);
    if (length == 0)
        Fail("TScanStringCore::lengthInt: Integer value not found.");
    return length;
}

int TScanStringCore::lengthFloat(TCodeUnit const *text)
{
    int const length = TStringCore::leftDoubleLength(text, -1);
    if (length == 0)
        Fail("TScanStringCore::lengthFloat: Float value not found.");
    return length;
}

int TScanStringCore::lengthAnyOf(TWideTwin const *text, Text const &set)
{
    return MeasureTwin(text, [&](TCodeUnit const *units) { return lengthAnyOf(units, set); });
}

int TScanStringCore::lengthAnyNotOf(TWideTwin const *text, Text const &set)
{
    return MeasureTwin(text, [&](TCodeUnit const *units) { return lengthAnyNotOf(units, set); });
}

int TScanStringCore::lengthWhitespace(TWideTwin const *text)
{
    return MeasureTwin(text, [](TCodeUnit const *units) { return lengthWhitespace(units); });
}

int TScanStringCore::lengthNonWhitespace(TWideTwin const *text)
{
    return MeasureTwin(text, [](TCodeUnit const *units) { return lengthNonWhitespace(units); });
}

int TScanStringCore::lengthString(TWideTwin const *text, int count)
{
    if (count < 0)
        return TStringCore::length(text);
    return LengthWhile(text, [&count](TWideTwin) { return count-- > 0; });
}

int TScanStringCore::lengthLine(TWideTwin const *text)
{
    return MeasureTwin(text, [](TCodeUnit const *units) { return lengthLine(units); });
}

int TScanStringCore::lengthNewline(TWideTwin const *text)
{
    return MeasureTwin(text, [](TCodeUnit const *units) { return lengthNewline(units); });
}

int TScanStringCore::lengthBool(TWideTwin const *text)
{
    return MeasureTwin(text, [](TCodeUnit const *units) { return lengthBool(units); });
}

int TScanStringCore::lengthInt(TWideTwin const *text, int base)
{
    return MeasureTwin(text, [base](TCodeUnit const *units) { return lengthInt(units, base); });
}

int TScanStringCore::lengthFloat(TWideTwin const *text)
{
    return MeasureTwin(text, [](TCodeUnit const *units) { return lengthFloat(units); });
}

// The cursor

TScanStringCore::TScanStringCore(TCodeUnit const *text) : m_input(text)
{
    CheckInput(m_input);
}

TScanStringCore &TScanStringCore::reset()
{
    CheckInput(m_input);
    m_cursor = 0;
    return *this;
}

TCodeUnit const *TScanStringCore::rest() const noexcept
{
    return OrEmpty(m_input) + m_cursor;
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
            Fail("TScanStringCore::skip: String mismatch.");
    }
    return advance(expected.length());
}

TScanStringCore &TScanStringCore::end()
{
    if (*rest() != 0)
        Fail("TScanStringCore::end(): Expected null character.");
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
    TStringCore const text = IntegerText(rest(), base);
    long long const value = IntegerOf(text, base, min, max, &TStringCore::toLongLong);
    advance(text.length());
    out = value;
}

void TScanStringCore::readInteger(unsigned long long &out, unsigned long long min, unsigned long long max,
                                  int base)
{
    TStringCore const text = IntegerText(rest(), base);
    unsigned long long const value = IntegerOf(text, base, min, max, &TStringCore::toULongLong);
    advance(text.length());
    out = value;
}

TScanStringCore &TScanStringCore::readFloat(float &out)
{
    int const length = TStringCore::leftDoubleLength(rest(), -1);
    if (length == 0)
        Fail("TScanStringCore::readFloat: Float value not found.");
    float const value = TStringCore(rest(), length).toFloat();
    advance(length);
    out = value;
    return *this;
}

TScanStringCore &TScanStringCore::readFloat(double &out)
{
    int const length = TStringCore::leftDoubleLength(rest(), -1);
    if (length == 0)
        Fail("TScanStringCore::readDouble: Float value not found.");
    double const value = TStringCore(rest(), length).toDouble();
    advance(length);
    out = value;
    return *this;
}

TScanStringCore::Exception::~Exception() = default;
