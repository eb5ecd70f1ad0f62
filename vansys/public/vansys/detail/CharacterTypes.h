/// @file
/// The types that characters and text come in.
#pragma once

#include "vansys/TCodeUnit.h"

#include <type_traits>

namespace vansys::detail
{

/// The character types that one unit of text may be given in.
template <class Character>
using EnableIfCharacter =
    std::enable_if_t<std::is_same_v<Character, TCodeUnit> || std::is_same_v<Character, TWideTwin> ||
                     std::is_same_v<Character, char>>;

/// Zero-terminated text, or one unit, of these types.
template <class Other>
using EnableIfTextOrUnit = EnableIfCharacter<std::remove_cv_t<std::remove_pointer_t<Other>>>;

/// The element of `u8"..."` literals; in C++17, where that is `char`, a type that nothing has.
#if defined(__cpp_char8_t)
using Utf8Character = char8_t;
#else
enum class Utf8Character : unsigned char
{
};
#endif

} // namespace vansys::detail
