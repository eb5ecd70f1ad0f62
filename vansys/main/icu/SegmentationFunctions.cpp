#include "vansys/ICUSegmentationFunctions.h"

#include "main/icu/Call.h"

using vansys::detail::Call;
using vansys::detail::FunctionTable;

namespace VanICU
{

ICUBreakIterator *t_ubrk_open(ICUBreakIteratorType type, char const *locale, TCodeUnit const *text,
                              int textLength, ICUErrorCode *status)
{
    return Call<ICUBreakIterator *>(&FunctionTable::ubrk_open, type, locale, text, textLength, status);
}

void t_ubrk_setUText(ICUBreakIterator *iterator, ICUText *text, ICUErrorCode *status)
{
    Call(&FunctionTable::ubrk_setUText, iterator, text, status);
}

int t_ubrk_next(ICUBreakIterator *iterator)
{
    return Call(&FunctionTable::ubrk_next, iterator);
}

int t_ubrk_getRuleStatus(ICUBreakIterator *iterator)
{
    return Call(&FunctionTable::ubrk_getRuleStatus, iterator);
}

void t_ubrk_close(ICUBreakIterator *iterator)
{
    Call(&FunctionTable::ubrk_close, iterator);
}

ICUText *t_utext_openUTF8(ICUText *text, char const *utf8, std::int64_t length, ICUErrorCode *status)
{
    return Call<ICUText *>(&FunctionTable::utext_openUTF8, text, utf8, length, status);
}

ICUText *t_utext_close(ICUText *text)
{
    return Call<ICUText *>(&FunctionTable::utext_close, text);
}

ICURegularExpression *t_uregex_open(TCodeUnit const *pattern, int patternLength, unsigned int flags,
                                    ICUParseError *parseError, ICUErrorCode *status)
{
    return Call<ICURegularExpression *>(&FunctionTable::uregex_open, pattern, patternLength, flags,
                                        parseError, status);
}

ICURegularExpression *t_uregex_clone(ICURegularExpression const *expression, ICUErrorCode *status)
{
    return Call<ICURegularExpression *>(&FunctionTable::uregex_clone, expression, status);
}

void t_uregex_close(ICURegularExpression *expression)
{
    Call(&FunctionTable::uregex_close, expression);
}

void t_uregex_setText(ICURegularExpression *expression, TCodeUnit const *text, int textLength,
                      ICUErrorCode *status)
{
    Call(&FunctionTable::uregex_setText, expression, text, textLength, status);
}

signed char t_uregex_find(ICURegularExpression *expression, int startIndex, ICUErrorCode *status)
{
    return Call(&FunctionTable::uregex_find, expression, startIndex, status);
}

signed char t_uregex_matches(ICURegularExpression *expression, int startIndex, ICUErrorCode *status)
{
    return Call(&FunctionTable::uregex_matches, expression, startIndex, status);
}

int t_uregex_start(ICURegularExpression *expression, int group, ICUErrorCode *status)
{
    return Call(&FunctionTable::uregex_start, expression, group, status);
}

int t_uregex_end(ICURegularExpression *expression, int group, ICUErrorCode *status)
{
    return Call(&FunctionTable::uregex_end, expression, group, status);
}

int t_uregex_group(ICURegularExpression *expression, int group, TCodeUnit *dest, int destCapacity,
                   ICUErrorCode *status)
{
    return Call(&FunctionTable::uregex_group, expression, group, dest, destCapacity, status);
}

int t_uregex_replaceAll(ICURegularExpression *expression, TCodeUnit const *replacement, int replacementLength,
                        TCodeUnit *dest, int destCapacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::uregex_replaceAll, expression, replacement, replacementLength, dest,
                destCapacity, status);
}

int t_uregex_replaceFirst(ICURegularExpression *expression, TCodeUnit const *replacement,
                          int replacementLength, TCodeUnit *dest, int destCapacity, ICUErrorCode *status)
{
    return Call(&FunctionTable::uregex_replaceFirst, expression, replacement, replacementLength, dest,
                destCapacity, status);
}

} // namespace VanICU
