/// @file
/// What the interface of TStringCore does not show.
#pragma once

#include "vansys/TStringCore.h"

#include <utility>

namespace vansys::detail
{

class StringAccess
{
public:
    /// The text that has been written into the storage.
    static TStringCore Adopt(StringStorage &&storage) noexcept { return TStringCore(std::move(storage)); }

    /// For a text that is written where it is to stay: what has been written unit by unit is slow to move.
    static StringStorage &Storage(TStringCore &text) noexcept { return text.m_storage; }
};

} // namespace vansys::detail
