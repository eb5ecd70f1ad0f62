/// @file
/// What must hold of every path, whatever its text.
#pragma once

#include "vansys/TPathCore.h"

#include <algorithm>
#include <string>
#include <vector>

/// The elements of a path in all the ways that give them, as the first of these; nothing if the ways differ.
inline std::vector<TStringCore> AgreedElements(TPathCore const &path, bool &agree)
{
    std::vector<TStringCore> const elements = path.toVector();
    std::vector<TStringCore> backward;
    for (auto element = path.end(); element != path.begin();)
        backward.push_back(*--element);
    PathElements const views = path.Elements();
    auto const isSame = [](TStringCore const &element, std::u16string_view view)
    { return std::u16string_view(element) == view; };
    agree = path.size() == static_cast<int>(elements.size()) && views.empty() == elements.empty() &&
            std::equal(elements.rbegin(), elements.rend(), backward.begin(), backward.end()) &&
            std::equal(elements.begin(), elements.end(), views.begin(), views.end(), isSame) &&
            std::equal(elements.rbegin(), elements.rend(), views.rbegin(), views.rend(), isSame);
    return elements;
}

/// What the path says that contradicts something else that it says; null when there is nothing.
inline char const *FindContradiction(TPathCore const &path)
{
    auto const text = [](TPathCore const &any) { return any.GenericString(); };
    bool agree = false;
    AgreedElements(path, agree);
    if (!agree)
        return "elements";
    if (path.HasRootName() == path.RootName().IsEmpty() || path.HasParentPath() == path.Parent().IsEmpty() ||
        path.HasRootDirectory() == path.RootDirectory().IsEmpty() ||
        path.HasRootPath() != (path.HasRootName() || path.HasRootDirectory()))
        return "what it has";
    if (text(path.RootPath()) != text(path.RootName().Append(path.RootDirectory())))
        return "root path";
    if (path.IsAdminShare() != (path.AdminShareDriveLetter() != 0xFFFF))
        return "administrative share";
    if (path.HasParentPath() && path.HasFilename() &&
        text(TPathCore(path).RemoveFilename()) != text(path.Parent()))
        return "parent";
    for (TPathCore any = path, parent; !any.IsEmpty(); any = parent)
    {
        parent = any.Parent();
        if (text(parent).length() >= text(any).length())
            return "parent that is not shorter";
    }
    if (text(TPathCore(path.NativeString())) != text(TPathCore(path.GenericString())))
        return "native text";
    // In pieces: the operators and `Append` have code of their own.
    for (TPathCore const added : {u"", u"n", u"/a name that goes to the heap"})
    {
        bool const isJoined =
            path.IsEmpty() || added.IsEmpty() || text(path).back() == u'/' || text(added).front() == u'/';
        TStringCore expected = text(path).append(isJoined ? u"" : u"/").append(text(added));
        AgreedElements(path / added, agree);
        if (!agree || text(path / added) != expected || text(TPathCore(path) / added) != expected ||
            text(TPathCore(path).Append(added)) != expected)
            return "what is appended";
    }
    return nullptr;
}
