#include "vansys/ICULocaleFunctions.h"

#include "main/icu/Call.h"

using vansys::detail::Call;
using vansys::detail::FunctionTable;

namespace VanICU
{

int t_uloc_getCountry(char const *locale, char *country, int capacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::uloc_getCountry, locale, country, capacity, status);
}

int t_uloc_getLanguage(char const *locale, char *language, int capacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::uloc_getLanguage, locale, language, capacity, status);
}

int t_uloc_getScript(char const *locale, char *script, int capacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::uloc_getScript, locale, script, capacity, status);
}

int t_uloc_getDisplayCountry(char const *locale, char const *displayLocale, TCodeUnit *country, int capacity,
                             ICUErrorCode *status)
{
    return Call(&FunctionTable::uloc_getDisplayCountry, locale, displayLocale, country, capacity, status);
}

int t_uloc_getDisplayLanguage(char const *locale, char const *displayLocale, TCodeUnit *language,
                              int capacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::uloc_getDisplayLanguage, locale, displayLocale, language, capacity, status);
}

unsigned int t_uloc_getLCID(char const *locale)
{
    return Call(&FunctionTable::uloc_getLCID, locale);
}

int t_uloc_getLocaleForLCID(unsigned int lcid, char *locale, int capacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::uloc_getLocaleForLCID, lcid, locale, capacity, status);
}

int t_ucurr_forLocale(char const *locale, TCodeUnit *currency, int capacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::ucurr_forLocale, locale, currency, capacity, status);
}

char const *t_uenum_next(ICUEnumeration *enumeration, int *length, ICUErrorCode *status)
{
    return Call(&FunctionTable::uenum_next, enumeration, length, status);
}

void t_uenum_close(ICUEnumeration *enumeration)
{
    Call(&FunctionTable::uenum_close, enumeration);
}

ICUNumberFormat *t_unum_open(ICUNumberFormatStyle style, TCodeUnit const *pattern, int patternLength,
                             char const *locale, ICUParseError *parseError, ICUErrorCode *status)
{
    return Call<ICUNumberFormat *>(&FunctionTable::unum_open, style, pattern, patternLength, locale,
                                   parseError, status);
}

void t_unum_close(ICUNumberFormat *format)
{
    Call(&FunctionTable::unum_close, format);
}

int t_unum_getSymbol(ICUNumberFormat const *format, ICUNumberFormatSymbol symbol, TCodeUnit *buffer,
                     int capacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::unum_getSymbol, format, symbol, buffer, capacity, status);
}

int t_unum_getTextAttribute(ICUNumberFormat const *format, ICUNumberFormatTextAttribute attribute,
                            TCodeUnit *buffer, int capacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::unum_getTextAttribute, format, attribute, buffer, capacity, status);
}

} // namespace VanICU
