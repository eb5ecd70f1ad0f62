#include "vansys/ICUConverterFunctions.h"

#include "main/icu/Call.h"

using vansys::detail::Call;
using vansys::detail::FunctionTable;

namespace VanICU
{

int t_ucnv_compareNames(char const *first, char const *second)
{
    return Call(&FunctionTable::ucnv_compareNames, first, second);
}

int t_ucnv_countAvailable()
{
    return Call(&FunctionTable::ucnv_countAvailable);
}

char const *t_ucnv_getAvailableName(int index)
{
    return Call(&FunctionTable::ucnv_getAvailableName, index);
}

char const *t_ucnv_getCanonicalName(char const *alias, char const *standard, ICUErrorCode *status)
{
    return Call(&FunctionTable::ucnv_getCanonicalName, alias, standard, status);
}

char const *t_ucnv_getStandardName(char const *name, char const *standard, ICUErrorCode *status)
{
    return Call(&FunctionTable::ucnv_getStandardName, name, standard, status);
}

char const *t_ucnv_getDefaultName()
{
    return Call(&FunctionTable::ucnv_getDefaultName);
}

void t_ucnv_setDefaultName(char const *name)
{
    Call(&FunctionTable::ucnv_setDefaultName, name);
}

ICUConverter *t_ucnv_open(char const *name, ICUErrorCode *status)
{
    return Call<ICUConverter *>(&FunctionTable::ucnv_open, name, status);
}

void t_ucnv_close(ICUConverter *converter)
{
    Call(&FunctionTable::ucnv_close, converter);
}

void t_ucnv_reset(ICUConverter *converter)
{
    Call(&FunctionTable::ucnv_reset, converter);
}

char const *t_ucnv_getName(ICUConverter const *converter, ICUErrorCode *status)
{
    return Call(&FunctionTable::ucnv_getName, converter, status);
}

int t_ucnv_getNextUChar(ICUConverter *converter, char const **source, char const *sourceLimit,
                        ICUErrorCode *status)
{
    return Call(&FunctionTable::ucnv_getNextUChar, converter, source, sourceLimit, status);
}

int t_ucnv_fromUChars(ICUConverter *converter, char *dest, int destCapacity, TCodeUnit const *src,
                      int srcLength, ICUErrorCode *status)
{
    return Call(&FunctionTable::ucnv_fromUChars, converter, dest, destCapacity, src, srcLength, status);
}

void t_ucnv_fromUnicode(ICUConverter *converter, char **target, char const *targetLimit,
                        TCodeUnit const **source, TCodeUnit const *sourceLimit, int *offsets,
                        signed char flush, ICUErrorCode *status)
{
    Call(&FunctionTable::ucnv_fromUnicode, converter, target, targetLimit, source, sourceLimit, offsets,
         flush, status);
}

void t_ucnv_toUnicode(ICUConverter *converter, TCodeUnit **target, TCodeUnit const *targetLimit,
                      char const **source, char const *sourceLimit, int *offsets, signed char flush,
                      ICUErrorCode *status)
{
    Call(&FunctionTable::ucnv_toUnicode, converter, target, targetLimit, source, sourceLimit, offsets, flush,
         status);
}

ICUCharsetDetector *t_ucsdet_open(ICUErrorCode *status)
{
    return Call<ICUCharsetDetector *>(&FunctionTable::ucsdet_open, status);
}

void t_ucsdet_setText(ICUCharsetDetector *detector, char const *text, int length, ICUErrorCode *status)
{
    Call(&FunctionTable::ucsdet_setText, detector, text, length, status);
}

ICUCharsetMatch const **t_ucsdet_detectAll(ICUCharsetDetector *detector, int *matchesFound,
                                           ICUErrorCode *status)
{
    return Call<ICUCharsetMatch const **>(&FunctionTable::ucsdet_detectAll, detector, matchesFound, status);
}

char const *t_ucsdet_getName(ICUCharsetMatch const *match, ICUErrorCode *status)
{
    return Call(&FunctionTable::ucsdet_getName, match, status);
}

int t_ucsdet_getConfidence(ICUCharsetMatch const *match, ICUErrorCode *status)
{
    return Call(&FunctionTable::ucsdet_getConfidence, match, status);
}

void t_ucsdet_close(ICUCharsetDetector *detector)
{
    Call(&FunctionTable::ucsdet_close, detector);
}

} // namespace VanICU
