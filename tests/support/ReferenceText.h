/// @file
/// The text operations in their plainest form, over std::u16string, for the library to be compared with.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace reference
{

/// What becomes of a unit before units are compared.
using Fold = char16_t (*)(char16_t);

inline char16_t keepCase(char16_t unit)
{
    return unit;
}

inline char16_t foldAscii(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
}

inline std::u16string folded(std::u16string text, Fold fold)
{
    std::transform(text.begin(), text.end(), text.begin(), fold);
    return text;
}

inline int compare(std::u16string const &a, std::u16string const &b, Fold fold)
{
    int const order = folded(a, fold).compare(folded(b, fold));
    return (order > 0) - (order < 0);
}

/// A position of the standard library as one of ours.
inline int position(std::size_t found)
{
    return found == std::u16string::npos ? -1 : static_cast<int>(found);
}

inline int indexOf(std::u16string const &text, std::u16string const &needle, int start, Fold fold)
{
    auto const from = static_cast<std::size_t>(std::max(start, 0));
    return position(folded(text, fold).find(folded(needle, fold), from));
}

inline int lastIndexOf(std::u16string const &text, std::u16string const &needle, int start, Fold fold)
{
    if (needle.empty() && start > static_cast<int>(text.size()))
        return -1;
    std::size_t const from = start < 0 ? std::u16string::npos : static_cast<std::size_t>(start);
    return position(folded(text, fold).rfind(folded(needle, fold), from));
}

/// The matches from left to right that do not overlap; none of an empty needle.
inline std::vector<std::size_t> matches(std::u16string const &text, std::u16string const &needle, Fold fold)
{
    std::vector<std::size_t> result;
    int from = 0;
    while (!needle.empty() && (from = indexOf(text, needle, from, fold)) >= 0)
    {
        result.push_back(static_cast<std::size_t>(from));
        from += static_cast<int>(needle.size());
    }
    return result;
}

inline std::u16string replace(std::u16string const &text, std::u16string const &before,
                              std::u16string const &after, Fold fold)
{
    std::u16string result;
    std::size_t from = 0;
    for (std::size_t const match : matches(text, before, fold))
    {
        result += text.substr(from, match - from) + after;
        from = match + before.size();
    }
    return result + text.substr(from);
}

/// A part of a text, by its place.
struct Part
{
    std::size_t position;
    std::size_t length;
};

inline std::vector<Part> cut(std::u16string const &text, std::u16string const &separator, bool skipEmpty,
                             Fold fold)
{
    std::vector<Part> result;
    if (separator.empty())
        return result;
    std::size_t from = 0;
    for (std::size_t const match : matches(text, separator, fold))
    {
        result.push_back({from, match - from});
        from = match + separator.size();
    }
    result.push_back({from, text.size() - from});
    if (skipEmpty)
        std::erase_if(result, [](Part part) { return part.length == 0; });
    return result;
}

inline std::vector<std::u16string> split(std::u16string const &text, std::u16string const &separator,
                                         bool skipEmpty, Fold fold)
{
    std::vector<std::u16string> result;
    for (Part const part : cut(text, separator, skipEmpty, fold))
        result.push_back(text.substr(part.position, part.length));
    return result;
}

/// The flags: 1 skips empty sections, 2 and 4 include the separator before and after.
inline std::u16string section(std::u16string const &text, std::u16string const &separator, int first,
                              int last, int flags, Fold fold)
{
    if (text.empty())
        return {};
    std::vector<Part> const sections = cut(text, separator, (flags & 1) != 0, fold);
    auto const count = static_cast<int>(sections.size());
    if (first < 0)
        first += count;
    if (last < 0)
        last += count;
    if (first < 0 || last >= count || last < first)
        return {};
    Part const &end = sections[static_cast<std::size_t>(last)];
    std::size_t from = sections[static_cast<std::size_t>(first)].position;
    std::size_t to = end.position + end.length;
    if ((flags & 2) != 0 && from >= separator.size())
        from -= separator.size();
    if ((flags & 4) != 0 && to + separator.size() <= text.size())
        to += separator.size();
    return text.substr(from, to - from);
}

} // namespace reference
