/// @file
/// What must hold of every path, whatever its text.
#pragma once

#include "vansys/TPathCore.h"

#include <algorithm>
#include <string>
#include <vector>

/// Whether all that gives the elements of a path gives the same ones.
inline bool DoElementsAgree(TPathCore const &path)
{
    std::vector<TStringCore> const elements = path.toVector();
    std::vector<TStringCore> backward;
    for (auto element = path.end(); element != path.begin();)
        backward.push_back(*--element);
    PathElements const views = path.Elements();
    auto const isSame = [](TStringCore const &element, std::u16string_view view)
    { return std::u16string_view(element) == view; };
    return path.size() == static_cast<int>(elements.size()) && views.empty() == elements.empty() &&
           std::equal(elements.rbegin(), elements.rend(), backward.begin(), backward.end()) &&
           std::equal(elements.begin(), elements.end(), views.begin(), views.end(), isSame) &&
           std::equal(elements.rbegin(), elements.rend(), views.rbegin(), views.rend(), isSame);
}

/// What the path says that contradicts something else that it says; null when there is nothing.
inline char const *FindContradiction(TPathCore const &path)
{
    auto const text = [](TPathCore const &any) { return any.GenericString(); };
    if (!DoElementsAgree(path))
        return "elements";
    if (path.HasRootName() == path.RootName().IsEmpty() ||
        path.HasRootDirectory() == path.RootDirectory().IsEmpty() ||
        path.HasRootPath() != (path.HasRootName() || path.HasRootDirectory()) ||
        path.IsAdminShare() != (path.AdminShareDriveLetter() != 0xFFFF) ||
        text(path.RootPath()) != text(path.RootName().Append(path.RootDirectory())))
        return "what it has";
    TPathCore const parent = path.Parent();
    if (path.HasParentPath() == parent.IsEmpty() ||
        (!path.IsEmpty() && text(parent).length() >= text(path).length()) ||
        (!parent.IsEmpty() && path.HasFilename() && text(TPathCore(path).RemoveFilename()) != text(parent)))
        return "parent";
    if (text(path.NativeString()) != text(path.GenericString()))
        return "native text";
    // In pieces: the operators and `Append` have code of their own.
    for (TPathCore const added : {u"", u"n", u"/a name that goes to the heap"})
    {
        bool const isJoined =
            path.IsEmpty() || added.IsEmpty() || text(path).back() == u'/' || text(added).front() == u'/';
        TStringCore const expected = text(path).append(isJoined ? u"" : u"/").append(text(added));
        if (!DoElementsAgree(path / added) || text(path / added) != expected ||
            text(TPathCore(path) / added) != expected || text(TPathCore(path).Append(added)) != expected)
            return "what is appended";
    }
    return nullptr;
}
