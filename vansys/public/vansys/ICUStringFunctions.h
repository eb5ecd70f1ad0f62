/// @file
/// Comparison, case mapping, conversion and normalisation of text, and stepping through it by code points.
/// For the conventions, see ICUFunctions.h.
#pragma once

#include "vansys/Export.h"
#include "vansys/ICUTypes.h"

namespace VanICU
{

// Comparison. The result is negative, 0 or positive.

/// By code unit; both zero-terminated.
VANSYS_API int t_u_strcmp(TCodeUnit const *first, TCodeUnit const *second);

/// By code unit, `length` units at most.
VANSYS_API int t_u_strncmp(TCodeUnit const *first, TCodeUnit const *second, int length);

/// Added to the folding options of a comparison: by code point, where the default is by code unit.
inline constexpr unsigned int ICU_COMPARE_CODE_POINT_ORDER = 0x8000;

/// After full case folding; both zero-terminated. `options`: see `t_u_foldCase`.
VANSYS_API int t_u_strcasecmp(TCodeUnit const *first, TCodeUnit const *second, unsigned int options);

/// After full case folding, `length` units of each at most.
VANSYS_API int t_u_strncasecmp(TCodeUnit const *first, TCodeUnit const *second, int length,
                               unsigned int options);

// Case mapping of whole text, which may change its length. The buffers may be the same.

/// Full case folding. `options`: see `t_u_foldCase`.
VANSYS_API int t_u_strFoldCase(TCodeUnit *dest, int destCapacity, TCodeUnit const *src, int srcLength,
                               unsigned int options, ICUErrorCode *status);

/// Lower case by the rules of a locale: null is ICU's default locale, "" is none in particular.
VANSYS_API int t_u_strToLower(TCodeUnit *dest, int destCapacity, TCodeUnit const *src, int srcLength,
                              char const *locale, ICUErrorCode *status);

/// Upper case by the rules of a locale: null is ICU's default locale, "" is none in particular.
VANSYS_API int t_u_strToUpper(TCodeUnit *dest, int destCapacity, TCodeUnit const *src, int srcLength,
                              char const *locale, ICUErrorCode *status);

/// Opens a case mapper of UTF-8 for a locale; null is ICU's default locale. `options` is 0.
VANSYS_API UCaseMap *t_ucasemap_open(char const *locale, unsigned int options, ICUErrorCode *status);

VANSYS_API int t_ucasemap_utf8ToLower(UCaseMap const *caseMap, char *dest, int destCapacity, char const *src,
                                      int srcLength, ICUErrorCode *status);

VANSYS_API int t_ucasemap_utf8ToUpper(UCaseMap const *caseMap, char *dest, int destCapacity, char const *src,
                                      int srcLength, ICUErrorCode *status);

/// Null is allowed.
VANSYS_API void t_ucasemap_close(UCaseMap *caseMap);

// Conversion between UTF-16, UTF-8 and UTF-32. These return `dest`, and store the length of the result in
// `*destLength` unless that is null. Ill-formed text is `U_INVALID_CHAR_FOUND`. The functions ending in
// WithSub put a substitution character in its place, unless that is negative, and count in `*substitutions`,
// unless that is null, how often they did.

VANSYS_API char *t_u_strToUTF8(char *dest, int destCapacity, int *destLength, TCodeUnit const *src,
                               int srcLength, ICUErrorCode *status);

VANSYS_API char *t_u_strToUTF8WithSub(char *dest, int destCapacity, int *destLength, TCodeUnit const *src,
                                      int srcLength, int substitute, int *substitutions,
                                      ICUErrorCode *status);

VANSYS_API TCodeUnit *t_u_strFromUTF8(TCodeUnit *dest, int destCapacity, int *destLength, char const *src,
                                      int srcLength, ICUErrorCode *status);

VANSYS_API TCodeUnit *t_u_strFromUTF8WithSub(TCodeUnit *dest, int destCapacity, int *destLength,
                                             char const *src, int srcLength, int substitute,
                                             int *substitutions, ICUErrorCode *status);

VANSYS_API int *t_u_strToUTF32(int *dest, int destCapacity, int *destLength, TCodeUnit const *src,
                               int srcLength, ICUErrorCode *status);

VANSYS_API TCodeUnit *t_u_strFromUTF32(TCodeUnit *dest, int destCapacity, int *destLength, int const *src,
                                       int srcLength, ICUErrorCode *status);

// Normalisation

/// The normaliser of a data file: `package` null with `name` "nfc", "nfkc" or "nfkc_cf" are ICU's own.
VANSYS_API ICUNormalizer2 const *t_unorm2_getInstance(char const *package, char const *name,
                                                      ICUNormalization2Mode mode, ICUErrorCode *status);

/// Writes the normalised text. The buffers may not overlap.
VANSYS_API int t_unorm2_normalize(ICUNormalizer2 const *normalizer, TCodeUnit const *src, int srcLength,
                                  TCodeUnit *dest, int destCapacity, ICUErrorCode *status);

/// Whether the text is normalised, as far as a quick look tells; `UNORM_MAYBE` when it takes a thorough one.
VANSYS_API ICUNormalizationCheckResult t_unorm2_quickCheck(ICUNormalizer2 const *normalizer,
                                                           TCodeUnit const *text, int length,
                                                           ICUErrorCode *status);

// Stepping by code points. They need no status and do not depend on the selected family. A lone surrogate,
// and in UTF-8 the longest part of a sequence that could have become whole, is one step.

/// Moves `i`, which is below `length`, behind the code point that begins there. UTF-16.
VANSYS_API void ICU16_FWD_1(TCodeUnit const *text, unsigned int &i, unsigned int length);

/// Moves `i`, which is above `start`, before the code point that ends there. UTF-16.
VANSYS_API void ICU16_BACK_1(TCodeUnit const *text, int start, int &i);

/// Moves `i`, which is below `length`, behind the code point that begins there. UTF-8.
VANSYS_API void ICU8_FWD_1(char const *text, unsigned int &i, unsigned int length);

/// Moves `i`, which is above `start`, before the code point that ends there. UTF-8.
VANSYS_API void ICU8_BACK_1(unsigned char const *text, int start, int &i);

} // namespace VanICU
