/// @file
/// Converters between UTF-16 and other encodings, and detection of encodings. For the conventions, see
/// ICUFunctions.h.
#pragma once

#include "vansys/Export.h"
#include "vansys/ICUTypes.h"

namespace VanICU
{

// Names of encodings

/// Compares names as ICU looks them up: letter case, hyphens, underscores, blanks and leading zeros do not
/// count. The result is negative, 0 or positive.
VANSYS_API int t_ucnv_compareNames(char const *first, char const *second);

/// The number of converters.
VANSYS_API int t_ucnv_countAvailable();

/// The name of a converter, 0 to `t_ucnv_countAvailable()` - 1; null outside that range.
VANSYS_API char const *t_ucnv_getAvailableName(int index);

/// ICU's own name of the converter that a standard such as "IANA" calls `alias`; null when there is none.
VANSYS_API char const *t_ucnv_getCanonicalName(char const *alias, char const *standard, ICUErrorCode *status);

/// What a standard such as "IANA" or "MIME" calls the converter `name`; null when it does not know it.
VANSYS_API char const *t_ucnv_getStandardName(char const *name, char const *standard, ICUErrorCode *status);

/// The name of the default converter: where ICU was built so, always UTF-8; on Windows at first that of the
/// ANSI code page.
VANSYS_API char const *t_ucnv_getDefaultName();

/// Changes the default converter of the process; null goes back to that of the platform. Does nothing where
/// ICU was built with UTF-8 as the only default. To be called before other threads use converters.
VANSYS_API void t_ucnv_setDefaultName(char const *name);

// Converting. Unless ICU is told otherwise, what cannot be converted is replaced, by U+FFFD or U+001A in
// UTF-16 and by a character of the encoding outside.

/// Opens a converter by any of its names; null opens the default one.
VANSYS_API ICUConverter *t_ucnv_open(char const *name, ICUErrorCode *status);

/// Null is allowed.
VANSYS_API void t_ucnv_close(ICUConverter *converter);

/// Forgets what is left over from earlier calls, in both directions.
VANSYS_API void t_ucnv_reset(ICUConverter *converter);

/// ICU's own name of the converter.
VANSYS_API char const *t_ucnv_getName(ICUConverter const *converter, ICUErrorCode *status);

/// Takes one code point from the bytes in `*source`, which ends at `sourceLimit` for good, and moves
/// `*source` behind it. `U_INDEX_OUTOFBOUNDS_ERROR` when no code point is left.
VANSYS_API int t_ucnv_getNextUChar(ICUConverter *converter, char const **source, char const *sourceLimit,
                                   ICUErrorCode *status);

/// Converts a whole text from UTF-16; resets the converter first.
VANSYS_API int t_ucnv_fromUChars(ICUConverter *converter, char *dest, int destCapacity, TCodeUnit const *src,
                                 int srcLength, ICUErrorCode *status);

/// Converts a piece of text from UTF-16, and moves `*target` and `*source` behind what was written and read.
/// `U_BUFFER_OVERFLOW_ERROR` asks for another call with more room. `flush` is true for the last piece.
/// `offsets`, null or as long as the target, receives for each byte the index of the unit that it came from.
VANSYS_API void t_ucnv_fromUnicode(ICUConverter *converter, char **target, char const *targetLimit,
                                   TCodeUnit const **source, TCodeUnit const *sourceLimit, int *offsets,
                                   signed char flush, ICUErrorCode *status);

/// Converts a piece of text to UTF-16; otherwise as `t_ucnv_fromUnicode`.
VANSYS_API void t_ucnv_toUnicode(ICUConverter *converter, TCodeUnit **target, TCodeUnit const *targetLimit,
                                 char const **source, char const *sourceLimit, int *offsets,
                                 signed char flush, ICUErrorCode *status);

// Detection of encodings

VANSYS_API ICUCharsetDetector *t_ucsdet_open(ICUErrorCode *status);

/// Sets the bytes that are to be looked at. They are not copied and must last as long as they are in use.
VANSYS_API void t_ucsdet_setText(ICUCharsetDetector *detector, char const *text, int length,
                                 ICUErrorCode *status);

/// The encodings that the bytes may be in, the most likely first, and their number. The array and the matches
/// belong to the detector and are valid until it is used again or closed.
VANSYS_API ICUCharsetMatch const **t_ucsdet_detectAll(ICUCharsetDetector *detector, int *matchesFound,
                                                      ICUErrorCode *status);

/// The name of the encoding.
VANSYS_API char const *t_ucsdet_getName(ICUCharsetMatch const *match, ICUErrorCode *status);

/// How sure the detector is, from 0 to 100.
VANSYS_API int t_ucsdet_getConfidence(ICUCharsetMatch const *match, ICUErrorCode *status);

/// Null is allowed. See also `ICULocalUCharsetDetectorPointer`.
VANSYS_API void t_ucsdet_close(ICUCharsetDetector *detector);

} // namespace VanICU
