/// @file
/// The comparison operators of TPathCore, its hash, and functors for containers of paths.
///
/// | what                        | case is      | for                                                     |
/// |-----------------------------|--------------|---------------------------------------------------------|
/// | `==`, `!=`, `std::hash`     | disregarded  | `std::unordered_map<TPathCore, T>`                      |
/// | `PathLess`                  | disregarded  | `std::map<TPathCore, T, PathLess>`                      |
/// | `PathEqualExact`, `PathHashExact` | respected | unordered containers, where case tells files apart   |
/// | `<`, `<=`, `>`, `>=`        | respected    | `std::map<TPathCore, T>`, where case tells files apart  |
///
/// All compare texts, unit by unit: "a//b" and "a/b" are different paths.
#pragma once

#include "vansys/Export.h"
#include "vansys/TPathCore.h"
#include "vansys/detail/CharacterTypes.h"

#include <cstddef>
#include <functional>
#include <type_traits>

namespace vansys::detail
{

/// Strings, and zero-terminated text: what a path is compared with as a path of that text.
template <class Other>
using EnableIfPathText = std::enable_if_t<std::is_same_v<Other, TStringCore> ||
                                          (std::is_pointer_v<std::decay_t<Other>> &&
                                           std::is_convertible_v<std::decay_t<Other>, TPathCore>)>;

} // namespace vansys::detail

inline bool operator==(TPathCore const &a, TPathCore const &b) noexcept
{
    return a.Compare(b) == 0;
}

inline bool operator!=(TPathCore const &a, TPathCore const &b) noexcept
{
    return a.Compare(b) != 0;
}

template <class Other, class = vansys::detail::EnableIfPathText<Other>>
bool operator==(TPathCore const &a, Other const &b)
{
    return a == TPathCore(b);
}

template <class Other, class = vansys::detail::EnableIfPathText<Other>>
bool operator==(Other const &a, TPathCore const &b)
{
    return TPathCore(a) == b;
}

template <class Other, class = vansys::detail::EnableIfPathText<Other>>
bool operator!=(TPathCore const &a, Other const &b)
{
    return a != TPathCore(b);
}

template <class Other, class = vansys::detail::EnableIfPathText<Other>>
bool operator!=(Other const &a, TPathCore const &b)
{
    return TPathCore(a) != b;
}

inline bool operator<(TPathCore const &a, TPathCore const &b) noexcept
{
    return a.GenericString() < b.GenericString();
}

inline bool operator>(TPathCore const &a, TPathCore const &b) noexcept
{
    return b < a;
}

inline bool operator<=(TPathCore const &a, TPathCore const &b) noexcept
{
    return !(b < a);
}

inline bool operator>=(TPathCore const &a, TPathCore const &b) noexcept
{
    return !(a < b);
}

#if defined(__cpp_impl_three_way_comparison)

/// There is no one answer, as `==` disregards case and `<` does not. Without this, `std::pair` and the
/// containers would find the operator of strings, and compare native texts.
void operator<=>(TPathCore const &, TPathCore const &) = delete;

#endif

/// Consistent with `==`: paths that differ in case only have the same hash. What differs in case only is for
/// the selected ICU to say (`VanICU::setIcuVersion`), so select it before hashes are kept.
template <>
struct VANSYS_API std::hash<TPathCore>
{
    std::size_t operator()(TPathCore const &path) const noexcept;
};

/// The order that disregards case: `a.Compare(b) < 0`.
struct PathLess
{
    bool operator()(TPathCore const &a, TPathCore const &b) const noexcept { return a.Compare(b) < 0; }
};

/// Whether both texts are the same, unit by unit.
struct PathEqualExact
{
    bool operator()(TPathCore const &a, TPathCore const &b) const noexcept
    {
        return a.GenericString() == b.GenericString();
    }
};

/// Consistent with `PathEqualExact`.
struct PathHashExact
{
    std::size_t operator()(TPathCore const &path) const noexcept
    {
        return std::hash<TStringCore>()(path.GenericString());
    }
};
