/// @file
/// Taking text apart: break iterators and regular expressions. For the conventions, see ICUFunctions.h.
#pragma once

#include "vansys/Export.h"
#include "vansys/ICUTypes.h"

#include <cstdint>

namespace VanICU
{

// Break iterators

/// Opens an iterator over the boundaries of words, sentences, ... as a locale has them. The text is not
/// copied and must last as long as it is in use; null sets none.
VANSYS_API ICUBreakIterator *t_ubrk_open(ICUBreakIteratorType type, char const *locale, TCodeUnit const *text,
                                         int textLength, ICUErrorCode *status);

/// Sets another text, from its start. The iterator refers to what the text stands for, which must last; the
/// `ICUText` itself may be closed.
VANSYS_API void t_ubrk_setUText(ICUBreakIterator *iterator, ICUText *text, ICUErrorCode *status);

/// Moves to the next boundary and returns its position in native units: code units, or bytes of UTF-8; -1 at
/// the end of the text.
VANSYS_API int t_ubrk_next(ICUBreakIterator *iterator);

/// What kind of piece ends at the current boundary. Of words: below 100 is no word (blanks, punctuation),
/// from 100 are numbers, 200 letters, 300 kana, 400 ideographs.
VANSYS_API int t_ubrk_getRuleStatus(ICUBreakIterator *iterator);

/// Null is allowed.
VANSYS_API void t_ubrk_close(ICUBreakIterator *iterator);

/// Lets an `ICUText` stand for text in UTF-8, which is not copied. `text` is one to be used again, or null
/// for a new one. A length of -1 means zero-terminated.
VANSYS_API ICUText *t_utext_openUTF8(ICUText *text, char const *utf8, std::int64_t length,
                                     ICUErrorCode *status);

/// Returns null. Null is allowed.
VANSYS_API ICUText *t_utext_close(ICUText *text);

// Regular expressions. Positions are in units of the text. Group 0 is the whole match.

// Flags of `t_uregex_open`

/// Only LF ends a line.
inline constexpr unsigned int ICU_REGEX_UNIX_LINES = 1;

/// Letter case does not count.
inline constexpr unsigned int ICU_REGEX_CASE_INSENSITIVE = 2;

/// In the pattern, blanks do not count, and "#" begins a comment.
inline constexpr unsigned int ICU_REGEX_COMMENTS = 4;

/// "^" and "$" match at line ends, too.
inline constexpr unsigned int ICU_REGEX_MULTILINE = 8;

/// The pattern is plain text.
inline constexpr unsigned int ICU_REGEX_LITERAL = 16;

/// "." matches line ends, too.
inline constexpr unsigned int ICU_REGEX_DOTALL = 32;

/// "\b" follows Unicode's rules for words.
inline constexpr unsigned int ICU_REGEX_UWORD = 256;

/// A backslash before a letter that it gives no meaning to is an error.
inline constexpr unsigned int ICU_REGEX_ERROR_ON_UNKNOWN_ESCAPES = 512;

/// Compiles a pattern. `flags` is a sum of `ICU_REGEX_...` values; `*parseError`, unless null, tells where
/// the pattern is wrong.
VANSYS_API ICURegularExpression *t_uregex_open(TCodeUnit const *pattern, int patternLength,
                                               unsigned int flags, ICUParseError *parseError,
                                               ICUErrorCode *status);

/// A copy that shares the compiled pattern, for another thread; it has no text yet.
VANSYS_API ICURegularExpression *t_uregex_clone(ICURegularExpression const *expression, ICUErrorCode *status);

/// Null is allowed.
VANSYS_API void t_uregex_close(ICURegularExpression *expression);

/// Sets the text that is to be searched. It is not copied and must last as long as it is in use.
VANSYS_API void t_uregex_setText(ICURegularExpression *expression, TCodeUnit const *text, int textLength,
                                 ICUErrorCode *status);

/// Finds the first match at `startIndex` or later; -1 means from the start of the text.
VANSYS_API signed char t_uregex_find(ICURegularExpression *expression, int startIndex, ICUErrorCode *status);

/// Whether the whole text from `startIndex` on matches; -1 means from the start of the text.
VANSYS_API signed char t_uregex_matches(ICURegularExpression *expression, int startIndex,
                                        ICUErrorCode *status);

/// Where a group of the last match begins; -1 when the group took no part in it.
VANSYS_API int t_uregex_start(ICURegularExpression *expression, int group, ICUErrorCode *status);

/// Where a group of the last match ends; -1 when the group took no part in it.
VANSYS_API int t_uregex_end(ICURegularExpression *expression, int group, ICUErrorCode *status);

/// Writes the text of a group of the last match.
VANSYS_API int t_uregex_group(ICURegularExpression *expression, int group, TCodeUnit *dest, int destCapacity,
                              ICUErrorCode *status);

/// Writes the text with every match replaced; "$1" in the replacement stands for group 1, "\" quotes.
VANSYS_API int t_uregex_replaceAll(ICURegularExpression *expression, TCodeUnit const *replacement,
                                   int replacementLength, TCodeUnit *dest, int destCapacity,
                                   ICUErrorCode *status);

/// Writes the text with the first match replaced; otherwise as `t_uregex_replaceAll`.
VANSYS_API int t_uregex_replaceFirst(ICURegularExpression *expression, TCodeUnit const *replacement,
                                     int replacementLength, TCodeUnit *dest, int destCapacity,
                                     ICUErrorCode *status);

} // namespace VanICU
