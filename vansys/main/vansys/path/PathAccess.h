/// @file
/// What the interface of TPathCore does not show.
#pragma once

#include "vansys/TPathCore.h"

#include <utility>

namespace vansys::detail
{

class PathAccess
{
public:
    /// A path of text that is generic already.
    static TPathCore MakePath(TStringCore generic) noexcept
    {
        return TPathCore::MakePath(std::move(generic));
    }

    /// The text that the path holds.
    static TStringCore const &Text(TPathCore const &path) noexcept { return path.m_text; }

    static int ElementLengthAt(TPathCore const &path, int position) { return path.ElementLengthAt(position); }
    static int SeparatorLengthAt(TPathCore const &path, int position)
    {
        return path.SeparatorLengthAt(position);
    }

    static TPathCore::iterator IteratorAt(TPathCore const &path, int position)
    {
        return TPathCore::iterator(&path, position);
    }
};

} // namespace vansys::detail
