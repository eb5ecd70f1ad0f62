/// @file
/// TCType: what kind of character a code unit is, and its other case.
#pragma once

#include "vansys/TCodeUnit.h"
#include "vansys/detail/CharacterTable.h"

#include <type_traits>

namespace vansys::detail
{

/// What a character may come in besides `TCodeUnit`.
template <class Other>
using EnableIfOtherCharacter =
    std::enable_if_t<std::is_same_v<Other, TWideTwin> || std::is_same_v<Other, char>>;

/// A byte has its counterpart among the units.
template <class Other>
using CaseResult = std::conditional_t<std::is_same_v<Other, char>, TCodeUnit, Other>;

} // namespace vansys::detail

/// Character classes by Unicode's properties, as the selected ICU has them (`VanICU::setIcuVersion`). No
/// locale plays a part.
///
/// One code unit is looked at. A surrogate is taken as itself, whether it is half of a pair or not. The
/// mappings are the simple ones, of one character to one; `TStringCore::toLower` and `toUpper` map text in
/// full.
///
/// **Other types.** Each function also takes an element of the other wide type (`TWideTwin`), and a `char`,
/// which is widened and not decoded. Where the other wide type holds code points, those beyond U+FFFF get
/// ICU's answer too, more slowly; what is no code point is in no class and has no other case.
///
/// Nothing here throws or allocates. A unit is looked up in a table, which is filled from ICU on first use,
/// 256 units in some microseconds.
///
/// **Threads.** Any number of threads may ask at the same time.
namespace TCType
{

// Classes: whether the unit is one of these.

/// A letter (`isAlpha`) or a decimal digit (`isDigit`).
inline bool isAlnum(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Alnum);
}

/// A letter: Unicode Alphabetic, which takes in letter-like numbers and some marks.
inline bool isAlpha(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Alpha);
}

/// A tab, or a space of general category Zs.
inline bool isBlank(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Blank);
}

/// A control: general category Cc. Unicode never changes this category, so nothing is looked up.
inline bool isCntrl(TCodeUnit unit) noexcept
{
    return vansys::detail::IsControl(unit);
}

/// A decimal digit of any script: general category Nd.
inline bool isDigit(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Digit);
}

/// Anything but spaces (general categories Z), controls, surrogates and what is not assigned.
inline bool isGraph(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Graph);
}

/// Unicode Lowercase.
inline bool isLower(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Lower);
}

/// What is graphic (`isGraph`), or a space of general category Zs.
inline bool isPrint(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Print);
}

/// Punctuation: general categories P. Symbols, such as "+", are not.
inline bool isPunct(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Punct);
}

/// White space, line ends included: Unicode White_Space.
inline bool isSpace(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Space);
}

/// Unicode Uppercase.
inline bool isUpper(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Upper);
}

/// A decimal digit of any script, or a letter A to F in either case; those may be fullwidth.
inline bool isXDigit(TCodeUnit unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::XDigit);
}

// Case: the other form of a letter; what has none stays as it is.

/// The simple lower-case mapping.
inline TCodeUnit ToLower(TCodeUnit unit) noexcept
{
    return static_cast<TCodeUnit>(vansys::detail::SimpleLower(unit));
}

/// The simple upper-case mapping.
inline TCodeUnit ToUpper(TCodeUnit unit) noexcept
{
    return static_cast<TCodeUnit>(vansys::detail::SimpleUpper(unit));
}

// The same for the other character types

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isAlnum(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Alnum);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isAlpha(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Alpha);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isBlank(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Blank);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isCntrl(Other unit) noexcept
{
    return vansys::detail::IsControl(unit);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isDigit(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Digit);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isGraph(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Graph);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isLower(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Lower);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isPrint(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Print);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isPunct(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Punct);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isSpace(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Space);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isUpper(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::Upper);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
bool isXDigit(Other unit) noexcept
{
    return vansys::detail::HasProperty(unit, vansys::detail::CharacterTable::XDigit);
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
vansys::detail::CaseResult<Other> ToLower(Other unit) noexcept
{
    return static_cast<vansys::detail::CaseResult<Other>>(vansys::detail::SimpleLower(unit));
}

template <class Other, class = vansys::detail::EnableIfOtherCharacter<Other>>
vansys::detail::CaseResult<Other> ToUpper(Other unit) noexcept
{
    return static_cast<vansys::detail::CaseResult<Other>>(vansys::detail::SimpleUpper(unit));
}

} // namespace TCType
