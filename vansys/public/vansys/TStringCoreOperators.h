/// @file
/// The comparison operators of TStringCore: what `TStringCore::compare` says, against another string, against
/// zero-terminated text of each of the three types, and against one unit. Without those for text, the
/// conversion of a string to a pointer would make `text == u"literal"` compare addresses.
///
/// Its hash. The stream operator that it does not have.
#pragma once

#include "vansys/Export.h"
#include "vansys/TStringCore.h"
#include "vansys/detail/CharacterTypes.h"

#include <cstddef>
#include <cstring>
#include <functional>
#include <iosfwd>

#if defined(__cpp_impl_three_way_comparison)
#    include <compare>
#endif

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

/// Consistent with `==`: the hash covers every unit of the text.
template <>
struct VANSYS_API std::hash<TStringCore>
{
    std::size_t operator()(TStringCore const &text) const noexcept;
};

/// `stream << text` would print an address. Write `stream << text.toStdString()`.
template <class Character, class Traits>
std::basic_ostream<Character, Traits> &operator<<(std::basic_ostream<Character, Traits> &,
                                                  TStringCore const &) = delete;
