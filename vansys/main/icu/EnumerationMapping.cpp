#include "main/icu/EnumerationMapping.h"

#include "vansys/VantrelException.h"

#include <cstddef>

using icu::DateFormat;
using icu::DateFormatSymbols;
using icu::DecimalFormatSymbols;

namespace vansys::detail
{

namespace
{

/// ICU's values for consecutive values of one of the layer's enumerations.
template <class Icu, std::size_t Count>
struct Mapping
{
    char const *messageForOthers;
    int first;
    Icu icu[Count];

    template <class Own>
    constexpr Icu operator()(Own value) const
    {
        auto const index = static_cast<unsigned int>(value) - static_cast<unsigned int>(first);
        if (index >= Count)
            throw VantrelException(messageForOthers);
        return icu[index];
    }
};

constexpr Mapping<DateFormat::EStyle, 4> Styles = {
    "Unknown UEStyle",
    0,
    {DateFormat::kFull, DateFormat::kLong, DateFormat::kMedium, DateFormat::kShort},
};

constexpr Mapping<UCalendarDateFields, 11> DateFields = {
    "Unknown calendar date field.",
    0,
    {UCAL_YEAR, UCAL_MONTH, UCAL_DATE, UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND,
     UCAL_WEEK_OF_YEAR, UCAL_YEAR_WOY, UCAL_DAY_OF_WEEK, UCAL_DAY_OF_YEAR},
};

constexpr Mapping<UCalendarDaysOfWeek, 7> DaysOfWeek = {
    "Unknown day of week.",
    1,
    {UCAL_SUNDAY, UCAL_MONDAY, UCAL_TUESDAY, UCAL_WEDNESDAY, UCAL_THURSDAY, UCAL_FRIDAY, UCAL_SATURDAY},
};

constexpr Mapping<DateFormatSymbols::DtWidthType, 4> Widths = {
    "Unknown width type.",
    0,
    {DateFormatSymbols::ABBREVIATED, DateFormatSymbols::WIDE, DateFormatSymbols::NARROW,
     DateFormatSymbols::SHORT},
};

constexpr Mapping<DateFormatSymbols::DtContextType, 3> Contexts = {
    "Unknown context type.",
    0,
    {DateFormatSymbols::FORMAT, DateFormatSymbols::STANDALONE, DateFormatSymbols::DT_CONTEXT_COUNT},
};

constexpr Mapping<DecimalFormatSymbols::ENumberFormatSymbol, 19> NumberSymbols = {
    "Unknown symbol id.",
    0,
    {DecimalFormatSymbols::kDecimalSeparatorSymbol, DecimalFormatSymbols::kGroupingSeparatorSymbol,
     DecimalFormatSymbols::kPatternSeparatorSymbol, DecimalFormatSymbols::kPercentSymbol,
     DecimalFormatSymbols::kZeroDigitSymbol, DecimalFormatSymbols::kDigitSymbol,
     DecimalFormatSymbols::kMinusSignSymbol, DecimalFormatSymbols::kPlusSignSymbol,
     DecimalFormatSymbols::kCurrencySymbol, DecimalFormatSymbols::kIntlCurrencySymbol,
     DecimalFormatSymbols::kMonetarySeparatorSymbol, DecimalFormatSymbols::kExponentialSymbol,
     DecimalFormatSymbols::kPerMillSymbol, DecimalFormatSymbols::kPadEscapeSymbol,
     DecimalFormatSymbols::kInfinitySymbol, DecimalFormatSymbols::kNaNSymbol,
     DecimalFormatSymbols::kSignificantDigitSymbol, DecimalFormatSymbols::kMonetaryGroupingSeparatorSymbol,
     DecimalFormatSymbols::kOneDigitSymbol},
};

} // namespace

DateFormat::EStyle ToIcu(VanICU::ICUEStyle style)
{
    return Styles(style);
}

UCalendarDateFields ToIcu(VanICU::ICUCalendarDateField field)
{
    return DateFields(field);
}

UCalendarDaysOfWeek ToIcu(VanICU::ICUDayOfWeek day)
{
    return DaysOfWeek(day);
}

DateFormatSymbols::DtWidthType ToIcu(VanICU::ICUSymbolWidth width)
{
    return Widths(width);
}

DateFormatSymbols::DtContextType ToIcu(VanICU::ICUSymbolContext context)
{
    return Contexts(context);
}

DecimalFormatSymbols::ENumberFormatSymbol ToIcu(VanICU::ICUNumberSymbolId symbol)
{
    return NumberSymbols(symbol);
}

} // namespace vansys::detail
