#include "main/vansys/path/PathText.h"

#include "main/vansys/string/UnitVector.h"
#include "vansys/TCType.h"

#include <algorithm>
#include <string_view>

namespace vansys::detail
{

namespace
{

constexpr int DriveLength = 2;     ///< "C:"
constexpr int PrefixLength = 4;    ///< "//?/"
constexpr int UncPrefixLength = 8; ///< "//?/UNC/"

/// A lane is set where a unit is the one sought.
std::uint32_t LanesWith(UnitVector sought, TCodeUnit const *units) noexcept
{
    return LaneBits(LoadUnits(units) == sought);
}

/// The first such unit, or the length.
int FindFirst(TCodeUnit const *units, int length, TCodeUnit unit) noexcept
{
    UnitVector const sought = Spread(unit);
    int i = 0;
    for (; length - i >= LanesOfVector; i += LanesOfVector)
    {
        if (std::uint32_t const bits = LanesWith(sought, units + i))
            return i + FirstLane(bits);
    }
    if (i < length && length >= LanesOfVector)
    {
        // One more vector ends with the text. What it begins with is known to be something else.
        i = length - LanesOfVector;
        std::uint32_t const bits = LanesWith(sought, units + i);
        return bits ? i + FirstLane(bits) : length;
    }
    while (i < length && units[i] != unit)
        ++i;
    return i;
}

/// Behind the last such unit; 0 when there is none.
int FindBehindLast(TCodeUnit const *units, int length, TCodeUnit unit) noexcept
{
    UnitVector const sought = Spread(unit);
    int i = length;
    for (; i >= LanesOfVector; i -= LanesOfVector)
    {
        if (std::uint32_t const bits = LanesWith(sought, units + i - LanesOfVector))
            return i - LanesOfVector + LastLane(bits) + 1;
    }
    if (i > 0 && length >= LanesOfVector)
    {
        std::uint32_t const bits = LanesWith(sought, units);
        return bits ? LastLane(bits) + 1 : 0;
    }
    while (i > 0 && units[i - 1] != unit)
        --i;
    return i;
}

/// Whether the units are the text, whose letters are lower-case and ASCII. No other letter is folded to one
/// of "unc".
bool EqualsWithoutCase(TCodeUnit const *units, std::string_view text) noexcept
{
    return std::equal(text.begin(), text.end(), units,
                      [](char expected, TCodeUnit unit)
                      {
                          bool const isUpper = unit >= 'A' && unit <= 'Z';
                          return (isUpper ? unit + AsciiCaseBit : unit) == expected;
                      });
}

} // namespace

bool PathText::IsDriveAt(int position) const noexcept
{
    return m_length >= position + DriveLength && m_units[position + 1] == u':' &&
           TCType::isAlpha(m_units[position]);
}

int PathText::NextSeparator(int position) const noexcept
{
    return position + FindFirst(m_units + position, m_length - position, Separator);
}

int PathText::SkipSeparators(int position) const noexcept
{
    while (position < m_length && m_units[position] == Separator)
        ++position;
    return position;
}

bool PathText::IsExtendedLength() const noexcept
{
    return m_length >= PrefixLength && m_units[0] == Separator && m_units[1] == Separator &&
           m_units[2] == u'?' && m_units[3] == Separator;
}

bool PathText::IsUNC() const noexcept
{
    if (m_length <= 2 || m_units[0] != Separator || m_units[1] != Separator)
        return false;
    if (m_units[2] != u'?')
        return true;
    return m_length >= UncPrefixLength && EqualsWithoutCase(m_units + 3, "/unc/");
}

int PathText::LengthOfRootName() const noexcept
{
    if (IsDriveAt(0))
        return DriveLength;
    if (m_length <= 2 || m_units[0] != Separator || m_units[1] != Separator)
        return 0;
    if (IsExtendedLength() && IsDriveAt(PrefixLength))
        return PrefixLength + DriveLength;
    if (m_units[2] != u'?')
        return NextSeparator(2);
    return IsUNC() ? NextSeparator(UncPrefixLength) : 0;
}

int PathText::ShareNameIndex() const noexcept
{
    return RootDirectoryIndex() + 1;
}

int PathText::ObjectNameIndex() const noexcept
{
    int const index = NextSeparator(ShareNameIndex());
    return index < m_length ? index : -1;
}

PathText PathText::ShareName() const noexcept
{
    if (!IsUNC())
        return PathText(m_units, 0);
    int const begin = ShareNameIndex();
    return PathText(m_units + begin, NextSeparator(begin) - begin);
}

bool PathText::IsAdminShare() const noexcept
{
    PathText const share = ShareName();
    return share.m_length == 2 && share.m_units[1] == u'$' && TCType::isAlpha(share.m_units[0]);
}

int PathText::FilenameIndex() const noexcept
{
    int const colon = FindFirst(m_units, m_length, u':');
    int const first = SkipSeparators(colon < m_length ? colon + 1 : 0);
    if (first == m_length)
        return -1;
    return first + FindBehindLast(m_units + first, m_length - first, Separator);
}

int PathText::ExtensionIndex() const noexcept
{
    int first = FilenameIndex();
    if (first < 0)
        return -1;
    while (first < m_length && m_units[first] == u'.')
        ++first;
    int const behindDot = FindBehindLast(m_units + first, m_length - first, u'.');
    return behindDot > 0 ? first + behindDot : -1;
}

int PathText::LengthWithoutFilename(int filename, int rootName) const noexcept
{
    int const first = IsSeparatorAt(rootName) ? rootName + 1 : 0;
    return filename > first ? filename - 1 : filename;
}

int PathText::LengthWithoutFilename() const noexcept
{
    int const filename = FilenameIndex();
    return filename < 0 ? m_length : LengthWithoutFilename(filename, RootNameLength());
}

int PathText::LengthWithoutExtension() const noexcept
{
    int const extension = ExtensionIndex();
    return extension > 0 ? extension - 1 : m_length;
}

int PathText::ParentLength() const noexcept
{
    int const filename = FilenameIndex();
    int const rootName = RootNameLength();
    int parent = m_length;
    if (filename >= 0)
        parent = LengthWithoutFilename(filename, rootName);
    else if (IsSeparatorAt(rootName) && EndsWithSeparator())
        --parent;
    else if (rootName > 0)
        parent = 0;
    return parent == m_length ? 0 : parent; // a path is not its own parent
}

int PathText::ElementLengthAt(int position) const noexcept
{
    int const rootName = RootNameLength();
    if (position == 0 && rootName > 0)
        return rootName;
    if (position == RootDirectoryIndexBehind(rootName))
        return 1;
    return NextSeparator(position) - position;
}

int PathText::SeparatorLengthAt(int position) const noexcept
{
    return position == RootDirectoryIndex() ? 0 : SkipSeparators(position) - position;
}

int PathText::CountElements() const noexcept
{
    int count = 0;
    for (int position = 0; position < m_length; ++count)
    {
        position += ElementLengthAt(position);
        if (position < m_length)
            position += SeparatorLengthAt(position);
    }
    return count;
}

} // namespace vansys::detail
