/// @file
/// The table of ICU functions through which a family reaches its ICU release.
#pragma once

#include <unicode/ubrk.h>
#include <unicode/ucasemap.h>
#include <unicode/uchar.h>
#include <unicode/uclean.h>
#include <unicode/ucnv.h>
#include <unicode/ucol.h>
#include <unicode/ucsdet.h>
#include <unicode/ucurr.h>
#include <unicode/uenum.h>
#include <unicode/uiter.h>
#include <unicode/uloc.h>
#include <unicode/unorm2.h>
#include <unicode/unum.h>
#include <unicode/uregex.h>
#include <unicode/usearch.h>
#include <unicode/ustring.h>
#include <unicode/utext.h>

// Every function that the layer passes on, named once. (ICU's headers add the release to the names.)
// clang-format off
#define VANSYS_ICU_FUNCTIONS(FUNCTION) \
    /* character properties */                                                                               \
    FUNCTION(u_charType) FUNCTION(u_hasBinaryProperty) FUNCTION(u_isUAlphabetic) FUNCTION(u_isULowercase)    \
    FUNCTION(u_isUUppercase) FUNCTION(u_isUWhiteSpace) FUNCTION(u_isWhitespace) FUNCTION(u_isblank)          \
    FUNCTION(u_isdigit) FUNCTION(u_ispunct) FUNCTION(u_isxdigit) FUNCTION(u_tolower) FUNCTION(u_toupper)     \
    FUNCTION(u_foldCase)                                                                                     \
    /* strings */                                                                                            \
    FUNCTION(u_strcmp) FUNCTION(u_strncmp) FUNCTION(u_strcasecmp) FUNCTION(u_strncasecmp)                    \
    FUNCTION(u_strFoldCase) FUNCTION(u_strToLower) FUNCTION(u_strToUpper) FUNCTION(u_strToUTF8)              \
    FUNCTION(u_strToUTF8WithSub) FUNCTION(u_strFromUTF8) FUNCTION(u_strFromUTF8WithSub)                      \
    FUNCTION(u_strToUTF32) FUNCTION(u_strFromUTF32)                                                          \
    /* library */                                                                                            \
    FUNCTION(u_errorName) FUNCTION(u_cleanup)                                                                \
    /* break iteration */                                                                                    \
    FUNCTION(ubrk_open) FUNCTION(ubrk_setUText) FUNCTION(ubrk_next) FUNCTION(ubrk_getRuleStatus)             \
    FUNCTION(ubrk_close) FUNCTION(utext_openUTF8) FUNCTION(utext_close)                                      \
    /* case mapping */                                                                                       \
    FUNCTION(ucasemap_open) FUNCTION(ucasemap_utf8ToLower) FUNCTION(ucasemap_utf8ToUpper)                    \
    FUNCTION(ucasemap_close)                                                                                 \
    /* converters */                                                                                         \
    FUNCTION(ucnv_open) FUNCTION(ucnv_close) FUNCTION(ucnv_reset) FUNCTION(ucnv_compareNames)                \
    FUNCTION(ucnv_countAvailable) FUNCTION(ucnv_getAvailableName) FUNCTION(ucnv_getCanonicalName)            \
    FUNCTION(ucnv_getStandardName) FUNCTION(ucnv_getDefaultName) FUNCTION(ucnv_setDefaultName)               \
    FUNCTION(ucnv_getName) FUNCTION(ucnv_getNextUChar) FUNCTION(ucnv_fromUChars)                             \
    FUNCTION(ucnv_fromUnicode) FUNCTION(ucnv_toUnicode)                                                      \
    /* collation */                                                                                          \
    FUNCTION(ucol_open) FUNCTION(ucol_openRules) FUNCTION(ucol_openAvailableLocales) FUNCTION(ucol_close)    \
    FUNCTION(ucol_getAttribute) FUNCTION(ucol_setAttribute) FUNCTION(ucol_setStrength)                       \
    FUNCTION(ucol_getLocaleByType) FUNCTION(ucol_getRules) FUNCTION(ucol_getSortKey)                         \
    FUNCTION(ucol_strcoll) FUNCTION(ucol_strcollIter) FUNCTION(uiter_setUTF8)                                \
    /* charset detection */                                                                                  \
    FUNCTION(ucsdet_open) FUNCTION(ucsdet_setText) FUNCTION(ucsdet_detectAll) FUNCTION(ucsdet_getName)       \
    FUNCTION(ucsdet_getConfidence) FUNCTION(ucsdet_close)                                                    \
    /* locale data */                                                                                        \
    FUNCTION(uloc_getCountry) FUNCTION(uloc_getLanguage) FUNCTION(uloc_getScript)                            \
    FUNCTION(uloc_getDisplayCountry) FUNCTION(uloc_getDisplayLanguage) FUNCTION(uloc_getLCID)                \
    FUNCTION(uloc_getLocaleForLCID) FUNCTION(ucurr_forLocale) FUNCTION(uenum_next) FUNCTION(uenum_close)     \
    /* normalisation */                                                                                      \
    FUNCTION(unorm2_getInstance) FUNCTION(unorm2_normalize) FUNCTION(unorm2_quickCheck)                      \
    /* number formats */                                                                                     \
    FUNCTION(unum_open) FUNCTION(unum_close) FUNCTION(unum_getSymbol) FUNCTION(unum_getTextAttribute)        \
    /* regular expressions */                                                                                \
    FUNCTION(uregex_open) FUNCTION(uregex_clone) FUNCTION(uregex_close) FUNCTION(uregex_setText)             \
    FUNCTION(uregex_find) FUNCTION(uregex_matches) FUNCTION(uregex_start) FUNCTION(uregex_end)               \
    FUNCTION(uregex_group) FUNCTION(uregex_replaceAll) FUNCTION(uregex_replaceFirst)                         \
    /* string search */                                                                                      \
    FUNCTION(usearch_openFromCollator) FUNCTION(usearch_setText) FUNCTION(usearch_first)                     \
    FUNCTION(usearch_last) FUNCTION(usearch_next) FUNCTION(usearch_previous) FUNCTION(usearch_following)     \
    FUNCTION(usearch_preceding) FUNCTION(usearch_getMatchedLength) FUNCTION(usearch_close)
// clang-format on

namespace vansys::detail
{

/// One member per function, of the same name. A family for another ICU release fills a table of its own.
struct FunctionTable
{
#define VANSYS_MEMBER(name) decltype(&::name) name; // NOLINT(bugprone-macro-parentheses): declares it
    VANSYS_ICU_FUNCTIONS(VANSYS_MEMBER)
#undef VANSYS_MEMBER
};

} // namespace vansys::detail
