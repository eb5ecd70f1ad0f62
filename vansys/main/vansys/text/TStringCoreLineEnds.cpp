// Line ends.

#include "vansys/TStringCore.h"

#include <algorithm>
#include <cstdint>

using vansys::StringFunctions;
using vansys::detail::StringStorage;

namespace
{

constexpr char LineFeed = '\n';
constexpr char CarriageReturn = '\r';

/// Calls `put` for each unit that the text has with one LF for each line end.
template <class Unit, class Put>
void ReadAsUnix(Unit const *text, int length, Put put)
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

/// Converts in place. Returns the new length.
template <class Unit>
int MakeUnix(Unit *text, int length)
{
    Unit *out = text;
    ReadAsUnix(text, length, [&](Unit unit) { *out++ = unit; });
    return static_cast<int>(out - text);
}

/// Makes CR LF of each LF, in place, from right to left.
void ExpandLineFeeds(TCodeUnit *text, int length, int newLength)
{
    for (TCodeUnit *in = text + length, *out = text + newLength; out != in;)
    {
        TCodeUnit const unit = *--in;
        *--out = unit;
        if (unit == LineFeed)
            *--out = CarriageReturn;
    }
}

struct DosForm
{
    std::int64_t length = 0;
    bool isSame = true; ///< as the text is already
};

DosForm MeasureAsDos(TCodeUnit const *text, int length)
{
    DosForm result;
    auto const put = [&](TCodeUnit unit)
    {
        result.isSame = result.isSame && result.length < length && text[result.length] == unit;
        ++result.length;
    };
    ReadAsUnix(text, length,
               [&](TCodeUnit unit)
               {
                   if (unit == LineFeed)
                       put(CarriageReturn);
                   put(unit);
               });
    result.isSame = result.isSame && result.length == length;
    return result;
}

template <class Unit>
int MakeZeroTerminatedUnix(Unit *text)
{
    if (!text)
        return 0;
    int const length = MakeUnix(text, StringFunctions::length(text));
    text[length] = 0;
    return length;
}

} // namespace

int StringFunctions::dosToUnix(TCodeUnit *text)
{
    return MakeZeroTerminatedUnix(text);
}

int StringFunctions::dosToUnix(TWideTwin *text)
{
    return MakeZeroTerminatedUnix(text);
}

TStringCore &TStringCore::dosToUnix()
{
    // Without any CR there is nothing to do, not even to copy what is shared.
    if (findChar(constData(), length(), CarriageReturn) < 0)
        return *this;
    TCodeUnit *const units = m_storage.writableUnits();
    m_storage.shorten(MakeUnix(units, length()));
    return *this;
}

TStringCore &TStringCore::unixToDos()
{
    DosForm const dos = MeasureAsDos(constData(), length());
    if (dos.isSame)
        return *this;
    // Room for both forms comes first: it is what can fail, and the text may get shorter before it gets
    // longer.
    int const before = length();
    int const after = StringStorage::checkedLength(dos.length);
    m_storage.setLength(std::max(before, after));
    TCodeUnit *const units = m_storage.writableUnits();
    ExpandLineFeeds(units, MakeUnix(units, before), after);
    m_storage.shorten(after);
    return *this;
}
