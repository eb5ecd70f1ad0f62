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
};

} // namespace vansys::detail
