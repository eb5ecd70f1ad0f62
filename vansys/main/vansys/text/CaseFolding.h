/// @file
/// The case folding of comparison and search.
#pragma once

#include "vansys/detail/CharacterTable.h"

namespace vansys::detail
{

/// The unit that stands for `unit` where case is disregarded: the simple case folding of Unicode, with
/// default options. A surrogate stands for itself.
inline TCodeUnit FoldUnit(TCodeUnit unit) noexcept
{
    if (unit < 0x80)
        return static_cast<TCodeUnit>(unit >= 'A' && unit <= 'Z' ? unit + ('a' - 'A') : unit);
    return CharacterTable::selected().folded(unit);
}

} // namespace vansys::detail
