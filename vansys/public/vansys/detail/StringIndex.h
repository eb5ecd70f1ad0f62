/// @file
/// Indices of other types than `int` and `unsigned int`.
#pragma once

#include <type_traits>

namespace vansys::detail
{

/// Index types for which neither `int` nor `unsigned int` is the one best match.
template <class Index>
using EnableIfLongIndex =
    std::enable_if_t<std::is_same_v<Index, long> || std::is_same_v<Index, unsigned long> ||
                     std::is_same_v<Index, long long> || std::is_same_v<Index, unsigned long long>>;

/// An index that no `int` holds becomes one that no text has, of the same signedness.
template <class Index>
auto NarrowIndex(Index index) noexcept
{
    using Narrow = std::conditional_t<std::is_signed_v<Index>, int, unsigned int>;
    auto const narrow = static_cast<Narrow>(index);
    return static_cast<Index>(narrow) == index ? narrow : static_cast<Narrow>(-1);
}

} // namespace vansys::detail
