/// @file
/// Properties and simple case mappings of single characters. For the conventions, see ICUFunctions.h.
///
/// These take any code point, 0 to 0x10FFFF; surrogates have properties of their own. A value that is no code
/// point has no property and maps to itself.
#pragma once

#include "vansys/Export.h"
#include "vansys/ICUTypes.h"

namespace VanICU
{

/// The general category, in Unicode's order from 0 (unassigned), 1 (upper-case letter), 2 (lower-case letter)
/// to 29 (final quotation mark).
VANSYS_API signed char t_u_charType(int codePoint);

/// Whether the character has a binary property; false when the property is not a binary one.
VANSYS_API signed char t_u_hasBinaryProperty(int codePoint, ICUProperty property);

/// The property Alphabetic: letters, and marks and numbers that are used like letters.
VANSYS_API signed char t_u_isUAlphabetic(int codePoint);

/// The property Lowercase, which some characters have that are not lower-case letters by category.
VANSYS_API signed char t_u_isULowercase(int codePoint);

/// The property Uppercase, which some characters have that are not upper-case letters by category.
VANSYS_API signed char t_u_isUUppercase(int codePoint);

/// The property White_Space: no-break spaces are among them, U+001C to U+001F are not.
VANSYS_API signed char t_u_isUWhiteSpace(int codePoint);

/// White space at which a line may be broken: no-break spaces are not among them, U+001C to U+001F are.
VANSYS_API signed char t_u_isWhitespace(int codePoint);

/// A space within a line: TAB, and the spaces by category.
VANSYS_API signed char t_u_isblank(int codePoint);

/// A decimal digit of any script.
VANSYS_API signed char t_u_isdigit(int codePoint);

/// Punctuation by category. Symbols such as "$" and "+" are not.
VANSYS_API signed char t_u_ispunct(int codePoint);

/// A decimal digit of any script, or one of A to F and a to f, in ASCII or full width.
VANSYS_API signed char t_u_isxdigit(int codePoint);

/// The lower-case form that is one character, in no language in particular; else the character itself.
VANSYS_API int t_u_tolower(int codePoint);

/// The upper-case form that is one character, in no language in particular; else the character itself.
VANSYS_API int t_u_toupper(int codePoint);

/// Case folding as usual.
inline constexpr unsigned int ICU_FOLD_CASE_DEFAULT = 0;

/// Case folding for Turkish and Azeri, where I with and without a dot are two letters.
inline constexpr unsigned int ICU_FOLD_CASE_EXCLUDE_SPECIAL_I = 1;

/// The case folding that is one character. `options` is one of the two above.
VANSYS_API int t_u_foldCase(int codePoint, unsigned int options);

} // namespace VanICU
