/// @file
/// Data of locales: names, Windows identifiers, currencies and the symbols of numbers. For the conventions,
/// see ICUFunctions.h.
///
/// A locale is given by its name, such as "sv_SE" or "zh_Hant_TW"; null is ICU's default locale.
#pragma once

#include "vansys/Export.h"
#include "vansys/ICUTypes.h"

namespace VanICU
{

// Names. The parts of a name are ASCII.

/// The country or region code: two letters or three digits; empty when the name has none.
VANSYS_API int t_uloc_getCountry(char const *locale, char *country, int capacity, ICUErrorCode *status);

/// The language code: two or three letters.
VANSYS_API int t_uloc_getLanguage(char const *locale, char *language, int capacity, ICUErrorCode *status);

/// The script code: four letters; empty when the name has none.
VANSYS_API int t_uloc_getScript(char const *locale, char *script, int capacity, ICUErrorCode *status);

/// What the country of `locale` is called in the language of `displayLocale`.
VANSYS_API int t_uloc_getDisplayCountry(char const *locale, char const *displayLocale, TCodeUnit *country,
                                        int capacity, ICUErrorCode *status);

/// What the language of `locale` is called in the language of `displayLocale`.
VANSYS_API int t_uloc_getDisplayLanguage(char const *locale, char const *displayLocale, TCodeUnit *language,
                                         int capacity, ICUErrorCode *status);

/// The Windows identifier (LCID) of a locale; 0 when it has none.
VANSYS_API unsigned int t_uloc_getLCID(char const *locale);

/// The name of the locale with a Windows identifier. It is looked up whatever `*status` is, which is only set
/// when that fails.
VANSYS_API int t_uloc_getLocaleForLCID(unsigned int lcid, char *locale, int capacity, ICUErrorCode *status);

/// The ISO 4217 code of the currency that is used in the country of `locale`.
VANSYS_API int t_ucurr_forLocale(char const *locale, TCodeUnit *currency, int capacity, ICUErrorCode *status);

// Enumerations of names

/// The next name, valid until the next call; null at the end. `*length`, unless null, receives its length.
VANSYS_API char const *t_uenum_next(ICUEnumeration *enumeration, int *length, ICUErrorCode *status);

/// Null is allowed.
VANSYS_API void t_uenum_close(ICUEnumeration *enumeration);

// Number formats

/// Opens a number format of a locale. `pattern` is used only with the styles `UNUM_PATTERN_DECIMAL` and
/// `UNUM_PATTERN_RULEBASED`. `*parseError`, unless null, tells where it is wrong.
VANSYS_API ICUNumberFormat *t_unum_open(ICUNumberFormatStyle style, TCodeUnit const *pattern,
                                        int patternLength, char const *locale, ICUParseError *parseError,
                                        ICUErrorCode *status);

/// Null is allowed.
VANSYS_API void t_unum_close(ICUNumberFormat *format);

/// Writes a symbol, such as the decimal separator.
VANSYS_API int t_unum_getSymbol(ICUNumberFormat const *format, ICUNumberFormatSymbol symbol,
                                TCodeUnit *buffer, int capacity, ICUErrorCode *status);

/// Writes a text, such as the prefix of negative numbers.
VANSYS_API int t_unum_getTextAttribute(ICUNumberFormat const *format, ICUNumberFormatTextAttribute attribute,
                                       TCodeUnit *buffer, int capacity, ICUErrorCode *status);

} // namespace VanICU
