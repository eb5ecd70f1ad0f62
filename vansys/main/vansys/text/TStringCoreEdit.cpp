// Operations that change the text.

#include "main/vansys/string/RawText.h"
#include "main/vansys/string/ShortList.h"
#include "main/vansys/string/UnitSet.h"
#include "vansys/TStringCore.h"

#include <algorithm>
#include <functional>

using vansys::detail::CopyUnits;
using vansys::detail::MoveUnits;
using vansys::detail::StringStorage;
using vansys::detail::UnitSet;

namespace
{

/// The units of an argument, copied where they are part of the string that is about to change.
class StableText
{
public:
    StableText(TStringCore::Text const &text, TStringCore const &changing) : m_length(text.length())
    {
        // std::less orders pointers into different objects too.
        std::less<TCodeUnit const *> const before;
        if (before(text.units(), changing.cbegin()) || before(changing.cend(), text.units()))
            m_units = text.units();
        else
        {
            m_copy.assign(text.units(), m_length);
            m_units = m_copy.constData();
        }
    }

    TCodeUnit const *units() const noexcept { return m_units; }

    int length() const noexcept { return m_length; }

    /// Writes the units. Returns how many there are.
    int copyTo(TCodeUnit *out) const noexcept
    {
        CopyUnits(out, m_units, m_length);
        return m_length;
    }

private:
    TStringCore m_copy;
    TCodeUnit const *m_units;
    int m_length;
};

struct Replaced
{
    int matches;
    int length; ///< of the text afterwards
};

/// Replaces in place, from left to right, by text that is not longer: what is written never reaches what is
/// still to be searched. `next(from)` finds the next match.
template <class Next>
Replaced replaceAsFound(TCodeUnit *units, int length, int matchLength, StableText const &replacement,
                        int firstMatch, Next next)
{
    int matches = 0;
    int from = 0;
    int to = 0;
    for (int match = firstMatch; match >= 0; match = next(from), ++matches)
    {
        if (to != from)
            MoveUnits(units + to, units + from, match - from);
        to += match - from;
        to += replacement.copyTo(units + to);
        from = match + matchLength;
    }
    if (to != from)
        MoveUnits(units + to, units + from, length - from);
    return {matches, to + length - from};
}

using Places = vansys::detail::ShortList<int, 256>;

/// Replaces the matches by longer text, from right to left, so that nothing is overwritten before it has been
/// moved. There is room for `newLength` units.
void replaceAt(Places const &places, TCodeUnit *units, int oldLength, int newLength, int matchLength,
               StableText const &replacement)
{
    int from = oldLength;
    int to = newLength;
    for (std::size_t i = places.size(); i-- > 0;)
    {
        int const behind = places[i] + matchLength;
        to -= from - behind;
        MoveUnits(units + to, units + behind, from - behind);
        to -= replacement.length();
        replacement.copyTo(units + to);
        from = places[i];
    }
}

} // namespace

TStringCore &TStringCore::insert(int position, Text const &text)
{
    return replace(position, 0, text);
}

TStringCore &TStringCore::removeAt(int position, int count)
{
    return replace(position, count, nullptr);
}

TStringCore &TStringCore::replace(int position, int count, Text const &text)
{
    int const before = length();
    int const begin = std::clamp(position, 0, before);
    int const removed = count < 0 ? before - begin : std::min(count, before - begin);
    if (removed == 0 && text.isEmpty())
        return *this;
    StableText const added(text, *this);
    int const after = StringStorage::checkedLength(std::int64_t{before} - removed + added.length());
    if (after > before)
        m_storage.setLength(after);
    TCodeUnit *const units = m_storage.writableUnits();
    MoveUnits(units + begin + added.length(), units + begin + removed, before - begin - removed);
    added.copyTo(units + begin);
    m_storage.shorten(after);
    return *this;
}

TStringCore &TStringCore::removeAll(Text const &text, CaseSensitivity sensitivity)
{
    return replace(text, nullptr, sensitivity);
}

int TStringCore::replaceCount(Text const &before, Text const &after, CaseSensitivity sensitivity)
{
    int const firstMatch = before.isEmpty() ? -1 : indexOf(before, 0, sensitivity);
    if (firstMatch < 0)
        return 0;
    StableText const old(before, *this);
    StableText const replacement(after, *this);
    auto const next = [&](int from)
    { return findStr(constData(), length(), old.units(), old.length(), from, sensitivity); };
    if (replacement.length() <= old.length())
    {
        Replaced const replaced =
            replaceAsFound(m_storage.writableUnits(), length(), old.length(), replacement, firstMatch, next);
        m_storage.shorten(replaced.length);
        return replaced.matches;
    }

    Places places;
    for (int match = firstMatch; match >= 0; match = next(match + old.length()))
        places.append(match);
    auto const matches = static_cast<int>(places.size());
    int const oldLength = length();
    int const newLength = StringStorage::checkedLength(oldLength + std::int64_t{matches} *
                                                                       (replacement.length() - old.length()));
    m_storage.setLength(newLength);
    replaceAt(places, m_storage.writableUnits(), oldLength, newLength, old.length(), replacement);
    return matches;
}

TStringCore &TStringCore::removeAnyOf(Text const &set, int start)
{
    int const first = findOneOf(constData(), length(), set.units(), set.length(), start);
    if (first < 0)
        return *this;
    StableText const stable(set, *this);
    UnitSet const members(stable.units(), stable.length());
    TCodeUnit *const units = m_storage.writableUnits();
    TCodeUnit const *const end = std::remove_if(units + first, units + length(),
                                                [&](TCodeUnit unit) { return members.contains(unit); });
    m_storage.shorten(static_cast<int>(end - units));
    return *this;
}

TStringCore &TStringCore::replaceAnyOf(Text const &set, TCodeUnit unit, int start)
{
    int const first = findOneOf(constData(), length(), set.units(), set.length(), start);
    if (first < 0)
        return *this;
    StableText const stable(set, *this);
    UnitSet const members(stable.units(), stable.length());
    TCodeUnit *const units = m_storage.writableUnits();
    std::replace_if(
        units + first, units + length(), [&](TCodeUnit old) { return members.contains(old); }, unit);
    return *this;
}

void TStringCore::truncate(int length)
{
    if (length < this->length())
        m_storage.setLength(length);
}

void TStringCore::truncateAtFirstNull()
{
    int const first = findChar(constData(), length(), 0);
    if (first >= 0)
        truncate(first);
}

void TStringCore::chop(int count)
{
    if (count > 0)
        truncate(std::max(length() - count, 0));
}

TStringCore &TStringCore::reverse()
{
    if (length() > 1)
        std::reverse(begin(), end());
    return *this;
}

TStringCore TStringCore::reversed() const
{
    TStringCore result = *this;
    result.reverse();
    return result;
}

TStringCore TStringCore::repeated(int times) const
{
    if (times == 1)
        return *this;
    TStringCore result;
    result.assignRepeated(constData(), length(), times);
    return result;
}
