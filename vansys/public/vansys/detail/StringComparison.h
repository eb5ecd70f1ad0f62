/// @file
/// The comparison operators of TStringCore: what `TStringCore::compare` says, against another string and
/// against zero-terminated text of each of the three types. Without the latter, the conversion of a string to
/// a pointer would make `text == u"literal"` compare addresses.
#pragma once

#include "vansys/TStringCore.h"

#include <cstring>

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

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator==(TStringCore const &a, Character const *b)
{
    return a.compare(b) == 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator==(Character const *a, TStringCore const &b)
{
    return b.compare(a) == 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator!=(TStringCore const &a, Character const *b)
{
    return a.compare(b) != 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator!=(Character const *a, TStringCore const &b)
{
    return b.compare(a) != 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator<(TStringCore const &a, Character const *b)
{
    return a.compare(b) < 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator<(Character const *a, TStringCore const &b)
{
    return b.compare(a) > 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator<=(TStringCore const &a, Character const *b)
{
    return a.compare(b) <= 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator<=(Character const *a, TStringCore const &b)
{
    return b.compare(a) >= 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator>(TStringCore const &a, Character const *b)
{
    return a.compare(b) > 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator>(Character const *a, TStringCore const &b)
{
    return b.compare(a) < 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator>=(TStringCore const &a, Character const *b)
{
    return a.compare(b) >= 0;
}

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
bool operator>=(Character const *a, TStringCore const &b)
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

template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
std::strong_ordering operator<=>(TStringCore const &a, Character const *b)
{
    return a.compare(b) <=> 0;
}

#endif
