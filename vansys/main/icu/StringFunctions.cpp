#include "vansys/ICUStringFunctions.h"

#include "main/icu/Call.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

using vansys::detail::Call;
using vansys::detail::FunctionTable;

namespace VanICU
{

int t_u_strcmp(TCodeUnit const *first, TCodeUnit const *second)
{
    return Call(&FunctionTable::u_strcmp, first, second);
}

int t_u_strncmp(TCodeUnit const *first, TCodeUnit const *second, int length)
{
    return Call(&FunctionTable::u_strncmp, first, second, length);
}

int t_u_strcasecmp(TCodeUnit const *first, TCodeUnit const *second, unsigned int options)
{
    return Call(&FunctionTable::u_strcasecmp, first, second, options);
}

int t_u_strncasecmp(TCodeUnit const *first, TCodeUnit const *second, int length, unsigned int options)
{
    return Call(&FunctionTable::u_strncasecmp, first, second, length, options);
}

int t_u_strFoldCase(TCodeUnit *dest, int destCapacity, TCodeUnit const *src, int srcLength,
                    unsigned int options, ICUErrorCode *status)
{
    return Call(&FunctionTable::u_strFoldCase, dest, destCapacity, src, srcLength, options, status);
}

int t_u_strToLower(TCodeUnit *dest, int destCapacity, TCodeUnit const *src, int srcLength, char const *locale,
                   ICUErrorCode *status)
{
    return Call(&FunctionTable::u_strToLower, dest, destCapacity, src, srcLength, locale, status);
}

int t_u_strToUpper(TCodeUnit *dest, int destCapacity, TCodeUnit const *src, int srcLength, char const *locale,
                   ICUErrorCode *status)
{
    return Call(&FunctionTable::u_strToUpper, dest, destCapacity, src, srcLength, locale, status);
}

UCaseMap *t_ucasemap_open(char const *locale, unsigned int options, ICUErrorCode *status)
{
    return Call<UCaseMap *>(&FunctionTable::ucasemap_open, locale, options, status);
}

int t_ucasemap_utf8ToLower(UCaseMap const *caseMap, char *dest, int destCapacity, char const *src,
                           int srcLength, ICUErrorCode *status)
{
    return Call(&FunctionTable::ucasemap_utf8ToLower, caseMap, dest, destCapacity, src, srcLength, status);
}

int t_ucasemap_utf8ToUpper(UCaseMap const *caseMap, char *dest, int destCapacity, char const *src,
                           int srcLength, ICUErrorCode *status)
{
    return Call(&FunctionTable::ucasemap_utf8ToUpper, caseMap, dest, destCapacity, src, srcLength, status);
}

void t_ucasemap_close(UCaseMap *caseMap)
{
    Call(&FunctionTable::ucasemap_close, caseMap);
}

char *t_u_strToUTF8(char *dest, int destCapacity, int *destLength, TCodeUnit const *src, int srcLength,
                    ICUErrorCode *status)
{
    return Call(&FunctionTable::u_strToUTF8, dest, destCapacity, destLength, src, srcLength, status);
}

char *t_u_strToUTF8WithSub(char *dest, int destCapacity, int *destLength, TCodeUnit const *src, int srcLength,
                           int substitute, int *substitutions, ICUErrorCode *status)
{
    return Call(&FunctionTable::u_strToUTF8WithSub, dest, destCapacity, destLength, src, srcLength,
                substitute, substitutions, status);
}

TCodeUnit *t_u_strFromUTF8(TCodeUnit *dest, int destCapacity, int *destLength, char const *src, int srcLength,
                           ICUErrorCode *status)
{
    return Call<TCodeUnit *>(&FunctionTable::u_strFromUTF8, dest, destCapacity, destLength, src, srcLength,
                             status);
}

TCodeUnit *t_u_strFromUTF8WithSub(TCodeUnit *dest, int destCapacity, int *destLength, char const *src,
                                  int srcLength, int substitute, int *substitutions, ICUErrorCode *status)
{
    return Call<TCodeUnit *>(&FunctionTable::u_strFromUTF8WithSub, dest, destCapacity, destLength, src,
                             srcLength, substitute, substitutions, status);
}

int *t_u_strToUTF32(int *dest, int destCapacity, int *destLength, TCodeUnit const *src, int srcLength,
                    ICUErrorCode *status)
{
    return Call(&FunctionTable::u_strToUTF32, dest, destCapacity, destLength, src, srcLength, status);
}

TCodeUnit *t_u_strFromUTF32(TCodeUnit *dest, int destCapacity, int *destLength, int const *src, int srcLength,
                            ICUErrorCode *status)
{
    return Call<TCodeUnit *>(&FunctionTable::u_strFromUTF32, dest, destCapacity, destLength, src, srcLength,
                             status);
}

ICUNormalizer2 const *t_unorm2_getInstance(char const *package, char const *name, ICUNormalization2Mode mode,
                                           ICUErrorCode *status)
{
    return Call<ICUNormalizer2 const *>(&FunctionTable::unorm2_getInstance, package, name, mode, status);
}

int t_unorm2_normalize(ICUNormalizer2 const *normalizer, TCodeUnit const *src, int srcLength, TCodeUnit *dest,
                       int destCapacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::unorm2_normalize, normalizer, src, srcLength, dest, destCapacity, status);
}

ICUNormalizationCheckResult t_unorm2_quickCheck(ICUNormalizer2 const *normalizer, TCodeUnit const *text,
                                                int length, ICUErrorCode *status)
{
    return Call<ICUNormalizationCheckResult>(&FunctionTable::unorm2_quickCheck, normalizer, text, length,
                                             status);
}

void ICU16_FWD_1(TCodeUnit const *text, unsigned int &i, unsigned int length)
{
    U16_FWD_1(text, i, length);
}

void ICU16_BACK_1(TCodeUnit const *text, int start, int &i)
{
    U16_BACK_1(text, start, i);
}

void ICU8_FWD_1(char const *text, unsigned int &i, unsigned int length)
{
    auto const *const bytes = reinterpret_cast<unsigned char const *>(text);
    U8_FWD_1(bytes, i, length);
}

void ICU8_BACK_1(unsigned char const *text, int start, int &i)
{
    U8_BACK_1(text, start, i);
}

} // namespace VanICU
