// Line ends.

#include "vansys/TStringCore.h"

using vansys::detail::StringFunctions;

namespace
{

constexpr char LineFeed = '\n';
constexpr char CarriageReturn = '\r';

/// Calls `put` for each unit that the text has with one LF for each line end.
template <class Unit, class Put>
void readAsUnix(Unit const *text, int length, Put put)
{
    enum class State
    {
        Normal,
        AfterCarriageReturn,
        AfterLineFeed,
    };

    State state = State::Normal;
    for (int i = 0; i < length; ++i)
    {
        Unit const unit = text[i];
        if (unit == CarriageReturn)
        {
            if (state != State::Normal)
                continue;
            put(Unit{LineFeed});
            state = State::AfterCarriageReturn;
        }
        else if (unit == LineFeed && state == State::AfterCarriageReturn)
            state = State::Normal;
        else
        {
            put(unit);
            state = unit == LineFeed ? State::AfterLineFeed : State::Normal;
        }
    }
}

/// The same with CR LF for each line end.
template <class Put>
void readAsDos(TCodeUnit const *text, int length, Put put)
{
    readAsUnix(text, length,
               [&](TCodeUnit unit)
               {
                   if (unit == LineFeed)
                       put(TCodeUnit{CarriageReturn});
                   put(unit);
               });
}

/// Converts in place. Returns the new length.
template <class Unit>
int makeUnix(Unit *text, int length)
{
    Unit *out = text;
    readAsUnix(text, length, [&](Unit unit) { *out++ = unit; });
    return static_cast<int>(out - text);
}

template <class Unit>
int makeZeroTerminatedUnix(Unit *text)
{
    if (!text)
        return 0;
    int const length = makeUnix(text, StringFunctions::length(text));
    text[length] = 0;
    return length;
}

} // namespace

int StringFunctions::dosToUnix(TCodeUnit *text)
{
    return makeZeroTerminatedUnix(text);
}

int StringFunctions::dosToUnix(TWideTwin *text)
{
    return makeZeroTerminatedUnix(text);
}

TStringCore &TStringCore::dosToUnix()
{
    // Without any CR there is nothing to do, not even to copy what is shared.
    if (findChar(constData(), length(), CarriageReturn) < 0)
        return *this;
    TCodeUnit *const units = m_storage.writableUnits();
    m_storage.shorten(makeUnix(units, length()));
    return *this;
}

TStringCore &TStringCore::unixToDos()
{
    std::int64_t newLength = 0;
    bool isSame = true;
    readAsDos(constData(), length(),
              [&](TCodeUnit unit)
              {
                  isSame = isSame && newLength < length() && constData()[newLength] == unit;
                  ++newLength;
              });
    if (isSame && newLength == length())
        return *this;
    TStringCore result;
    TCodeUnit *out =
        result.m_storage.setLengthForOverwrite(vansys::detail::StringStorage::checkedLength(newLength));
    readAsDos(constData(), length(), [&](TCodeUnit unit) { *out++ = unit; });
    return *this = std::move(result);
}
