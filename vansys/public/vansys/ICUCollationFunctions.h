/// @file
/// Collation: comparing, sorting and searching text as the readers of a language expect it. For the
/// conventions, see ICUFunctions.h.
#pragma once

#include "vansys/Export.h"
#include "vansys/Forward.h"
#include "vansys/ICUTypes.h"

namespace VanICU
{

// Collators

/// Opens the collator of a locale: null is ICU's default locale, "" the root collation. When nothing is known
/// of the locale, the status is `U_USING_DEFAULT_WARNING`.
VANSYS_API ICU_Collator *t_ucol_open(char const *locale, ICUErrorCode *status);

/// Opens a collator that follows tailoring rules. `*parseError`, unless null, tells where a rule is wrong.
VANSYS_API ICU_Collator *t_ucol_openRules(TCodeUnit const *rules, int rulesLength,
                                          ICUColAttributeValue normalizationMode,
                                          ICUColAttributeValue strength, ICUParseError *parseError,
                                          ICUErrorCode *status);

/// The names of the locales that have collators; to be closed with `t_uenum_close`.
VANSYS_API ICUEnumeration *t_ucol_openAvailableLocales(ICUErrorCode *status);

/// Null is allowed.
VANSYS_API void t_ucol_close(ICU_Collator *collator);

VANSYS_API ICUColAttributeValue t_ucol_getAttribute(ICU_Collator const *collator, ICUColAttribute attribute,
                                                    ICUErrorCode *status);

VANSYS_API void t_ucol_setAttribute(ICU_Collator *collator, ICUColAttribute attribute,
                                    ICUColAttributeValue value, ICUErrorCode *status);

/// Sets which differences count: letters (primary), accents too (secondary), case too (tertiary), ...
VANSYS_API void t_ucol_setStrength(ICU_Collator *collator, ICUColAttributeValue strength);

/// The name of the locale that the collator came from; null when it was opened with rules.
VANSYS_API char const *t_ucol_getLocaleByType(ICU_Collator const *collator, ICULocDataLocaleType type,
                                              ICUErrorCode *status);

/// The tailoring rules, not always zero-terminated; their length is stored in `*length`.
VANSYS_API TCodeUnit const *t_ucol_getRules(ICU_Collator const *collator, int *length);

/// Writes the sort key of a text, a zero byte at its end. Keys that one collator made compare bytewise as it
/// compares their texts. Returns the length of the key with the zero, whether there was room or not; 0 on
/// failure.
VANSYS_API int t_ucol_getSortKey(ICU_Collator const *collator, TCodeUnit const *source, int sourceLength,
                                 unsigned char *result, int resultLength);

VANSYS_API ICUCollationResult t_ucol_strcoll(ICU_Collator const *collator, TCodeUnit const *source,
                                             int sourceLength, TCodeUnit const *target, int targetLength);

/// Compares what two iterators go through, as far as that takes them.
VANSYS_API ICUCollationResult t_ucol_strcollIter(ICU_Collator const *collator, UCharIterator *source,
                                                 UCharIterator *target, ICUErrorCode *status);

/// Lets the iterator go through text in UTF-8, which is not copied.
VANSYS_API void t_uiter_setUTF8(UCharIterator *iterator, char const *text, int length);

/// Tailoring rules that make the digits 0 to 9 equal, and set the variable top just behind them: a collator
/// that follows them and has `UCOL_ALTERNATE_HANDLING` set to `UCOL_SHIFTED` ignores digits.
///
/// The rules are written for ICU 4.4 to 5.2. Later releases refuse "[variable top]": there,
/// `t_ucol_openRules` reports `U_INVALID_FORMAT_ERROR`. The reference is valid until the end of the process.
VANSYS_API TStringCore const &t_getIgnoreDigitsRule();

// String search. Text and pattern are not copied and must last as long as the search. Positions are in units;
// -1 means that there is no match.

/// Opens a search that compares as the collator does. The collator and the break iterator stay the caller's
/// and must last as long. With a break iterator, matches begin and end at its boundaries only; null is
/// allowed. Neither pattern nor text may be empty.
VANSYS_API ICUStringSearch *t_usearch_openFromCollator(TCodeUnit const *pattern, int patternLength,
                                                       TCodeUnit const *text, int textLength,
                                                       ICU_Collator const *collator,
                                                       ICUBreakIterator *breakIterator, ICUErrorCode *status);

/// Sets another text, from its start.
VANSYS_API void t_usearch_setText(ICUStringSearch *search, TCodeUnit const *text, int textLength,
                                  ICUErrorCode *status);

VANSYS_API int t_usearch_first(ICUStringSearch *search, ICUErrorCode *status);

VANSYS_API int t_usearch_last(ICUStringSearch *search, ICUErrorCode *status);

/// The next match; the first one at the start.
VANSYS_API int t_usearch_next(ICUStringSearch *search, ICUErrorCode *status);

/// The previous match; the last one at the start.
VANSYS_API int t_usearch_previous(ICUStringSearch *search, ICUErrorCode *status);

/// The first match that begins at `position` or later.
VANSYS_API int t_usearch_following(ICUStringSearch *search, int position, ICUErrorCode *status);

/// The last match that ends at `position` or before.
VANSYS_API int t_usearch_preceding(ICUStringSearch *search, int position, ICUErrorCode *status);

/// The length of the match found last; 0 without one.
VANSYS_API int t_usearch_getMatchedLength(ICUStringSearch const *search);

/// Null is allowed.
VANSYS_API void t_usearch_close(ICUStringSearch *search);

} // namespace VanICU
