/// @file
/// The comparison operators of TStringCore: what `TStringCore::compare` says, against another string, against
/// zero-terminated text of each of the three types, and against one unit. Without those for text, the
/// conversion of a string to a pointer would make `text == u"literal"` compare addresses.
#pragma once

#include "vansys/TStringCore.h"

#include <cstring>
#include <type_traits>

#if defined(__cpp_impl_three_way_comparison)
#    include <compare>
#endif

namespace vansys::detail
{

/// Zero-terminated text, or one unit, of any type that `TStringCore::Text` takes.
template <class Other>
using EnableIfTextOrUnit = EnableIfCharacter<std::remove_cv_t<std::remove_pointer_t<Other>>>;

} // namespace vansys::detail

inline bool operator==(TStringCore const &a, TStringCore const &b) noexcept
{
    return a.length() == b.length() && std::memcmp(a.constData(), b.constData(), a.lengthInBytes()) == 0;
}

inline bool operator!=(TStringCore const &a, TStringCore const &b) noexcept
{
    return !(a == b);
}

inline bool operator<(TStringCore const &a, TStringCore const &b) noexcept
{
    return a.compare(b) < 0;
}

inline bool operator<=(TStringCore const &a, TStringCore const &b) noexcept
{
    return a.compare(b) <= 0;
}

inline bool operator>(TStringCore const &a, TStringCore const &b) noexcept
{
    return a.compare(b) > 0;
}

inline bool operator>=(TStringCore const &a, TStringCore const &b) noexcept
{
    return a.compare(b) >= 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator==(TStringCore const &a, Other b)
{
    return a.compare(b) == 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator==(Other a, TStringCore const &b)
{
    return b.compare(a) == 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator!=(TStringCore const &a, Other b)
{
    return a.compare(b) != 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator!=(Other a, TStringCore const &b)
{
    return b.compare(a) != 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator<(TStringCore const &a, Other b)
{
    return a.compare(b) < 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator<(Other a, TStringCore const &b)
{
    return b.compare(a) > 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator<=(TStringCore const &a, Other b)
{
    return a.compare(b) <= 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator<=(Other a, TStringCore const &b)
{
    return b.compare(a) >= 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator>(TStringCore const &a, Other b)
{
    return a.compare(b) > 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator>(Other a, TStringCore const &b)
{
    return b.compare(a) < 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator>=(TStringCore const &a, Other b)
{
    return a.compare(b) >= 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
bool operator>=(Other a, TStringCore const &b)
{
    return b.compare(a) <= 0;
}

#if defined(__cpp_impl_three_way_comparison)

// Not in place of the operators above, which C++17 needs, but beside them: `std::pair` and the containers ask
// for this one, and would find that of the pointers.

inline std::strong_ordering operator<=>(TStringCore const &a, TStringCore const &b) noexcept
{
    return a.compare(b) <=> 0;
}

template <class Other, class = vansys::detail::EnableIfTextOrUnit<Other>>
std::strong_ordering operator<=>(TStringCore const &a, Other b)
{
    return a.compare(b) <=> 0;
}

#endif
