#include "vansys/ICUCollationFunctions.h"

#include "main/icu/Call.h"
#include "vansys/TStringCore.h"

using vansys::detail::Call;
using vansys::detail::FunctionTable;

namespace VanICU
{

ICU_Collator *t_ucol_open(char const *locale, ICUErrorCode *status)
{
    return Call<ICU_Collator *>(&FunctionTable::ucol_open, locale, status);
}

ICU_Collator *t_ucol_openRules(TCodeUnit const *rules, int rulesLength,
                               ICUColAttributeValue normalizationMode, ICUColAttributeValue strength,
                               ICUParseError *parseError, ICUErrorCode *status)
{
    return Call<ICU_Collator *>(&FunctionTable::ucol_openRules, rules, rulesLength, normalizationMode,
                                strength, parseError, status);
}

ICUEnumeration *t_ucol_openAvailableLocales(ICUErrorCode *status)
{
    return Call<ICUEnumeration *>(&FunctionTable::ucol_openAvailableLocales, status);
}

void t_ucol_close(ICU_Collator *collator)
{
    Call(&FunctionTable::ucol_close, collator);
}

ICUColAttributeValue t_ucol_getAttribute(ICU_Collator const *collator, ICUColAttribute attribute,
                                         ICUErrorCode *status)
{
    return Call<ICUColAttributeValue>(&FunctionTable::ucol_getAttribute, collator, attribute, status);
}

void t_ucol_setAttribute(ICU_Collator *collator, ICUColAttribute attribute, ICUColAttributeValue value,
                         ICUErrorCode *status)
{
    Call(&FunctionTable::ucol_setAttribute, collator, attribute, value, status);
}

void t_ucol_setStrength(ICU_Collator *collator, ICUColAttributeValue strength)
{
    Call(&FunctionTable::ucol_setStrength, collator, strength);
}

char const *t_ucol_getLocaleByType(ICU_Collator const *collator, ICULocDataLocaleType type,
                                   ICUErrorCode *status)
{
    return Call(&FunctionTable::ucol_getLocaleByType, collator, type, status);
}

TCodeUnit const *t_ucol_getRules(ICU_Collator const *collator, int *length)
{
    return Call<TCodeUnit const *>(&FunctionTable::ucol_getRules, collator, length);
}

int t_ucol_getSortKey(ICU_Collator const *collator, TCodeUnit const *source, int sourceLength,
                      unsigned char *result, int resultLength)
{
    return Call(&FunctionTable::ucol_getSortKey, collator, source, sourceLength, result, resultLength);
}

ICUCollationResult t_ucol_strcoll(ICU_Collator const *collator, TCodeUnit const *source, int sourceLength,
                                  TCodeUnit const *target, int targetLength)
{
    return Call<ICUCollationResult>(&FunctionTable::ucol_strcoll, collator, source, sourceLength, target,
                                    targetLength);
}

ICUCollationResult t_ucol_strcollIter(ICU_Collator const *collator, UCharIterator *source,
                                      UCharIterator *target, ICUErrorCode *status)
{
    return Call<ICUCollationResult>(&FunctionTable::ucol_strcollIter, collator, source, target, status);
}

void t_uiter_setUTF8(UCharIterator *iterator, char const *text, int length)
{
    Call(&FunctionTable::uiter_setUTF8, iterator, text, length);
}

TStringCore const &t_getIgnoreDigitsRule()
{
    // Never destroyed, so that it outlives every user.
    static TStringCore const *const rule =
        new TStringCore("&'0'='1'='2'='3'='4'='5'='6'='7'='8'='9'<[variable top]");
    return *rule;
}

ICUStringSearch *t_usearch_openFromCollator(TCodeUnit const *pattern, int patternLength,
                                            TCodeUnit const *text, int textLength,
                                            ICU_Collator const *collator, ICUBreakIterator *breakIterator,
                                            ICUErrorCode *status)
{
    return Call<ICUStringSearch *>(&FunctionTable::usearch_openFromCollator, pattern, patternLength, text,
                                   textLength, collator, breakIterator, status);
}

void t_usearch_setText(ICUStringSearch *search, TCodeUnit const *text, int textLength, ICUErrorCode *status)
{
    Call(&FunctionTable::usearch_setText, search, text, textLength, status);
}

int t_usearch_first(ICUStringSearch *search, ICUErrorCode *status)
{
    return Call(&FunctionTable::usearch_first, search, status);
}

int t_usearch_last(ICUStringSearch *search, ICUErrorCode *status)
{
    return Call(&FunctionTable::usearch_last, search, status);
}

int t_usearch_next(ICUStringSearch *search, ICUErrorCode *status)
{
    return Call(&FunctionTable::usearch_next, search, status);
}

int t_usearch_previous(ICUStringSearch *search, ICUErrorCode *status)
{
    return Call(&FunctionTable::usearch_previous, search, status);
}

int t_usearch_following(ICUStringSearch *search, int position, ICUErrorCode *status)
{
    return Call(&FunctionTable::usearch_following, search, position, status);
}

int t_usearch_preceding(ICUStringSearch *search, int position, ICUErrorCode *status)
{
    return Call(&FunctionTable::usearch_preceding, search, position, status);
}

int t_usearch_getMatchedLength(ICUStringSearch const *search)
{
    return Call(&FunctionTable::usearch_getMatchedLength, search);
}

void t_usearch_close(ICUStringSearch *search)
{
    Call(&FunctionTable::usearch_close, search);
}

} // namespace VanICU
