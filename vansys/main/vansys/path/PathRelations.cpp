// How paths lie to each other, told by their text.

#include "main/vansys/path/PathAccess.h"
#include "main/vansys/path/PathText.h"
#include "vansys/TPathCore.h"

#include <algorithm>
#include <cstddef>
#include <vector>

using namespace vansys::detail;

namespace
{

/// The path without what says nothing: the root path, and names of which ".." is one only where nothing is
/// known of what it leads out of.
struct NormalPath
{
    TStringCore root;
    std::vector<TStringCore> names;
    /// How many of the names no ".." leads out of: a share is to its folders what a drive is.
    std::size_t fixedNames = 0;
};

bool IsDot(PathText const &name) noexcept
{
    return name.Length() == 1 && name.Units()[0] == u'.';
}

bool IsDotDot(PathText const &name) noexcept
{
    return name.Length() == 2 && name.Units()[0] == u'.' && name.Units()[1] == u'.';
}

bool IsDotDot(TStringCore const &name) noexcept
{
    return IsDotDot(PathText(name));
}

NormalPath Normalize(PathText const &path)
{
    NormalPath normal;
    // With the extended-length prefix, the system takes what follows as it is, dots included. The prefix
    // stays one, in front of whatever.
    bool const isLiteral = path.IsExtendedLength();
    constexpr int PrefixLength = 4;
    int const rootLength = std::max(path.RootPathLength(), isLiteral ? PrefixLength : 0);
    normal.root = TStringCore(path.Units(), rootLength);
    bool const hasRootDirectory = path.RootDirectoryIndex() >= 0;
    normal.fixedNames = path.IsUNC() && hasRootDirectory ? 1 : 0;

    std::vector<TStringCore> &names = normal.names;
    for (int position = rootLength; position < path.Length();)
    {
        if (path.IsSeparatorAt(position))
        {
            ++position;
            continue;
        }
        PathText const rest = path.From(position);
        int end = 0;
        while (end < rest.Length() && !rest.IsSeparatorAt(end))
            ++end;
        PathText const name = rest.Left(end);
        position += end;
        if (!isLiteral && IsDot(name))
            continue;
        bool const leadsOut = !isLiteral && IsDotDot(name);
        if (leadsOut && names.size() > normal.fixedNames && !IsDotDot(names.back()))
            names.pop_back();
        else if (!leadsOut || !hasRootDirectory)
            names.emplace_back(name.Units(), name.Length());
    }
    return normal;
}

/// The names from `first` on, behind the root and `up` times "..".
TPathCore Compose(TStringCore const &root, std::vector<TStringCore> const &names, std::size_t first = 0,
                  std::size_t up = 0)
{
    TStringCore text = root;
    auto const append = [&text, &root](TStringCore const &name)
    {
        if (text.length() > root.length())
            text.append(Separator);
        text.append(name);
    };
    for (; up > 0; --up)
        append(u"..");
    // A name that looks like a drive is none with something before it.
    if (text.isEmpty() && first < names.size() && PathText(names[first]).RootNameLength() > 0)
        append(u".");
    std::for_each(names.begin() + static_cast<std::ptrdiff_t>(first), names.end(), append);
    return PathAccess::MakePath(text.isEmpty() ? TStringCore(u".") : text);
}

bool IsSame(TStringCore const &a, TStringCore const &b, TStringCore::CaseSensitivity sensitivity) noexcept
{
    return a.compare(b, sensitivity) == 0;
}

/// A server holds its shares, with or without a root directory behind its name.
bool HaveSameRoot(NormalPath const &a, NormalPath const &b, TStringCore::CaseSensitivity sensitivity)
{
    auto const root = [](NormalPath const &path)
    {
        PathText const text(path.root);
        return text.IsUNC() && text.RootDirectoryIndex() >= 0 ? path.root.left(text.Length() - 1) : path.root;
    };
    return IsSame(root(a), root(b), sensitivity);
}

/// How many names both begin with; -1 when their roots differ.
std::ptrdiff_t CountCommonNames(NormalPath const &a, NormalPath const &b,
                                TStringCore::CaseSensitivity sensitivity)
{
    if (!HaveSameRoot(a, b, sensitivity))
        return -1;
    auto const isSame = [sensitivity](TStringCore const &first, TStringCore const &second)
    { return IsSame(first, second, sensitivity); };
    auto const differing =
        std::mismatch(a.names.begin(), a.names.end(), b.names.begin(), b.names.end(), isSame);
    return differing.first - a.names.begin();
}

} // namespace

TPathCore TPathCore::LexicallyNormal() const
{
    if (IsEmpty())
        return *this;
    NormalPath const normal = Normalize(PathText(m_text));
    return Compose(normal.root, normal.names);
}

TPathCore TPathCore::RelativeTo(TPathCore const &base, TStringCore::CaseSensitivity sensitivity) const
{
    NormalPath const from = Normalize(PathText(base.m_text));
    NormalPath const to = Normalize(PathText(m_text));
    std::ptrdiff_t const common = CountCommonNames(from, to, sensitivity);
    if (common < 0 || static_cast<std::size_t>(common) < std::min(from.names.size(), from.fixedNames) ||
        std::any_of(from.names.begin() + common, from.names.end(),
                    [](TStringCore const &name) { return IsDotDot(name); }))
        return TPathCore();
    auto const first = static_cast<std::size_t>(common);
    return Compose(TStringCore(), to.names, first, from.names.size() - first);
}

bool TPathCore::IsUnder(TPathCore const &base, TStringCore::CaseSensitivity sensitivity) const
{
    NormalPath const outer = Normalize(PathText(base.m_text));
    NormalPath const inner = Normalize(PathText(m_text));
    std::ptrdiff_t const common = CountCommonNames(outer, inner, sensitivity);
    return common == static_cast<std::ptrdiff_t>(outer.names.size()) &&
           std::none_of(inner.names.begin() + common, inner.names.end(),
                        [](TStringCore const &name) { return IsDotDot(name); });
}
