/// @file
/// The text of a path, and where its parts are.
#pragma once

#include "vansys/TStringCore.h"

namespace vansys::detail
{

inline constexpr TCodeUnit Separator = u'/';
inline constexpr TCodeUnit NativeSeparator = u'\\';

/// Generic text, which it refers to and which must outlive it. Every position is an index of a unit, and -1
/// stands for none. Nothing here copies text or throws.
class PathText
{
public:
    PathText(TCodeUnit const *units, int length) noexcept : m_units(units), m_length(length) {}
    explicit PathText(TStringCore const &text) noexcept : PathText(text.constData(), text.length()) {}

    TCodeUnit const *Units() const noexcept { return m_units; }
    int Length() const noexcept { return m_length; }

    PathText Left(int length) const noexcept { return PathText(m_units, length); }
    PathText From(int position) const noexcept { return PathText(m_units + position, m_length - position); }

    /// False outside the text.
    bool IsSeparatorAt(int position) const noexcept
    {
        return position >= 0 && position < m_length && m_units[position] == Separator;
    }

    bool EndsWithSeparator() const noexcept { return IsSeparatorAt(m_length - 1); }

    int RootNameLength() const noexcept
    {
        // Most paths are known to have none by their first two units.
        if (m_length < 2 || (m_units[1] != u':' && (m_units[0] != Separator || m_units[1] != Separator)))
            return 0;
        return LengthOfRootName();
    }

    int RootDirectoryIndex() const noexcept { return RootDirectoryIndexBehind(RootNameLength()); }

    /// Of the root name and the root directory.
    int RootPathLength() const noexcept
    {
        int const rootName = RootNameLength();
        return IsSeparatorAt(rootName) ? rootName + 1 : rootName;
    }

    bool IsExtendedLength() const noexcept;
    bool IsUNC() const noexcept;

    /// Both 0 for a path without root directory, and the second -1 where there is none.
    int ShareNameIndex() const noexcept;
    int ObjectNameIndex() const noexcept;

    /// Empty where there is no share.
    PathText ShareName() const noexcept;
    bool IsAdminShare() const noexcept;

    int FilenameIndex() const noexcept;
    int ExtensionIndex() const noexcept;

    /// What is left without the file name, and without the extension.
    int LengthWithoutFilename() const noexcept;
    int LengthWithoutExtension() const noexcept;

    /// 0 where there is no parent.
    int ParentLength() const noexcept;

    /// Of the element, or the run of separators, at a position in the text. The root directory is an element.
    int ElementLengthAt(int position) const noexcept;
    int SeparatorLengthAt(int position) const noexcept;

    int CountElements() const noexcept;

private:
    int RootDirectoryIndexBehind(int rootNameLength) const noexcept
    {
        return IsSeparatorAt(rootNameLength) ? rootNameLength : -1;
    }

    int LengthWithoutFilename(int filename, int rootName) const noexcept;

    int LengthOfRootName() const noexcept;

    bool IsDriveAt(int position) const noexcept;

    /// The first "/" at or after the position; the length when there is none.
    int NextSeparator(int position) const noexcept;

    /// The first unit at or after the position that is no "/"; the length when there is none.
    int SkipSeparators(int position) const noexcept;

    TCodeUnit const *m_units;
    int m_length;
};

} // namespace vansys::detail
