/// @file
/// Calls ICU's functions with the types of the interface.
#pragma once

#include "vansys/ICUTypes.h"

#include "main/icu/Family.h"

#include <type_traits>

namespace vansys::detail
{

/// Whether a type of the interface and one of ICU's stand for the same.
template <class Own, class Icu>
inline constexpr bool Mirrors = std::is_same_v<Own, Icu>;

template <class Own, class Icu>
inline constexpr bool Mirrors<Own *, Icu *> = Mirrors<Own, Icu>;

template <class Own, class Icu>
inline constexpr bool Mirrors<Own const, Icu const> = Mirrors<Own, Icu>;

// clang-format off
template <> inline constexpr bool Mirrors<TCodeUnit, UChar> = true;

template <> inline constexpr bool Mirrors<VanICU::ICUBreakIterator, UBreakIterator> = true;
template <> inline constexpr bool Mirrors<VanICU::ICU_Collator, UCollator> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUConverter, UConverter> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUCharsetDetector, UCharsetDetector> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUCharsetMatch, UCharsetMatch> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUEnumeration, UEnumeration> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUNormalizer2, UNormalizer2> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUNumberFormat, UNumberFormat> = true;
template <> inline constexpr bool Mirrors<VanICU::ICURegularExpression, URegularExpression> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUStringSearch, UStringSearch> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUText, UText> = true;
template <> inline constexpr bool Mirrors<VanICU::UCaseMap, UCaseMap> = true;

// MirrorCheck.cpp compares the layouts and values of these.
template <> inline constexpr bool Mirrors<VanICU::ICUParseError, UParseError> = true;
template <> inline constexpr bool Mirrors<VanICU::UCharIterator, UCharIterator> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUErrorCode, UErrorCode> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUProperty, UProperty> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUBreakIteratorType, UBreakIteratorType> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUColAttribute, UColAttribute> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUColAttributeValue, UColAttributeValue> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUCollationResult, UCollationResult> = true;
template <> inline constexpr bool Mirrors<VanICU::ICULocDataLocaleType, ULocDataLocaleType> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUNormalization2Mode, UNormalization2Mode> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUNormalizationCheckResult, UNormalizationCheckResult> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUNumberFormatStyle, UNumberFormatStyle> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUNumberFormatSymbol, UNumberFormatSymbol> = true;
template <> inline constexpr bool Mirrors<VanICU::ICUNumberFormatTextAttribute, UNumberFormatTextAttribute> = true;
// clang-format on

/// Turns a value into its counterpart, which must be known to be one.
template <class To, class From>
constexpr To As(From value) noexcept
{
    if constexpr (std::is_same_v<To, From>)
        return value;
    else
    {
        static_assert(Mirrors<From, To> || Mirrors<To, From>, "the types do not stand for the same");
        if constexpr (std::is_pointer_v<To>)
            return reinterpret_cast<To>(value);
        else
            return static_cast<To>(value);
    }
}

/// Calls a function of the selected family's ICU with arguments of the interface's types. The result is of
/// ICU's type unless `Own` names the interface's.
template <class Own = void, class Result, class... Parameters, class... Arguments>
auto Call(Result (*FunctionTable::*function)(Parameters...), Arguments... arguments)
{
    auto *const target = SelectedFunctions().*function;
    if constexpr (std::is_void_v<Own>)
        return target(As<Parameters>(arguments)...);
    else
        return As<Own>(target(As<Parameters>(arguments)...));
}

} // namespace vansys::detail
