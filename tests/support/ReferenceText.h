/// @file
/// The text operations in their plainest form, over std::u16string, for the library to be compared with.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace reference
{

using Text = std::u16string;

/// What becomes of a unit before units are compared.
using Fold = char16_t (*)(char16_t);

inline constexpr Fold KeepCase = [](char16_t unit) { return unit; };
inline constexpr Fold FoldAscii = [](char16_t unit)
{ return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit; };

inline Text Folded(Text text, Fold fold)
{
    std::transform(text.begin(), text.end(), text.begin(), fold);
    return text;
}

inline int Compare(Text const &a, Text const &b, Fold fold)
{
    int const order = Folded(a, fold).compare(Folded(b, fold));
    return (order > 0) - (order < 0);
}

/// A position of the standard library as one of ours.
inline int Position(std::size_t found)
{
    return found == Text::npos ? -1 : static_cast<int>(found);
}

inline int IndexOf(Text const &text, Text const &needle, int start, Fold fold)
{
    return Position(Folded(text, fold).find(Folded(needle, fold), static_cast<unsigned>(std::max(start, 0))));
}

inline int LastIndexOf(Text const &text, Text const &needle, int start, Fold fold)
{
    if (needle.empty() && start > static_cast<int>(text.size()))
        return -1;
    std::size_t const from = start < 0 ? Text::npos : static_cast<std::size_t>(start);
    return Position(Folded(text, fold).rfind(Folded(needle, fold), from));
}

/// A part of a text: where it begins, and where it ends.
using Part = std::pair<std::size_t, std::size_t>;

/// What lies between the matches of a separator, from left to right; nothing where that is empty.
inline std::vector<Part> Cut(Text const &text, Text const &separator, bool skipEmpty, Fold fold)
{
    std::vector<Part> result;
    std::size_t from = 0;
    for (int match = 0; !separator.empty() && match >= 0; from = result.back().second + separator.size())
    {
        match = IndexOf(text, separator, static_cast<int>(from), fold);
        result.emplace_back(from, match < 0 ? text.size() : static_cast<std::size_t>(match));
    }
    if (skipEmpty)
        std::erase_if(result, [](Part part) { return part.first == part.second; });
    return result;
}

inline std::vector<Text> Split(Text const &text, Text const &separator, bool skipEmpty, Fold fold)
{
    std::vector<Text> result;
    for (auto const &[begin, end] : Cut(text, separator, skipEmpty, fold))
        result.push_back(text.substr(begin, end - begin));
    return result;
}

/// The number of matches that do not overlap; none of an empty needle.
inline int Count(Text const &text, Text const &needle, Fold fold)
{
    return std::max(static_cast<int>(Cut(text, needle, false, fold).size()) - 1, 0);
}

inline Text Replace(Text const &text, Text const &before, Text const &after, Fold fold)
{
    Text result;
    for (Text const &part : Split(text, before, false, fold))
        result += part + after;
    return before.empty() ? text : result.substr(0, result.size() - after.size());
}

/// The flags: 1 skips empty sections, 2 and 4 include the separator before and after.
inline Text Section(Text const &text, Text const &separator, int first, int last, int flags, Fold fold)
{
    std::vector<Part> const sections = Cut(text, separator, (flags & 1) != 0, fold);
    auto const count = static_cast<int>(sections.size());
    first += first < 0 ? count : 0;
    last += last < 0 ? count : 0;
    if (text.empty() || first < 0 || last >= count || last < first)
        return {};
    std::size_t begin = sections[static_cast<std::size_t>(first)].first;
    std::size_t end = sections[static_cast<std::size_t>(last)].second;
    if ((flags & 2) != 0 && begin >= separator.size())
        begin -= separator.size();
    if ((flags & 4) != 0 && end + separator.size() <= text.size())
        end += separator.size();
    return text.substr(begin, end - begin);
}

} // namespace reference
