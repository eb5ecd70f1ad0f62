/// @file
/// The comparison operators of TStringCore: what `TStringCore::compare` says, against another string and
/// against zero-terminated text of each of the three types. Without the latter, the conversion of a string to
/// a pointer would make `text == u"literal"` compare addresses.
#pragma once

#include "vansys/TStringCore.h"

#include <cstring>

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
