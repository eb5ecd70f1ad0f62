/// @file
/// The layer's own enumerations, for calendars, dates and numbers.
///
/// A class that takes one of them throws a `VantrelException` for a value that is not listed here; the
/// message stands with the enumeration.
#pragma once

namespace VanICU
{

/// How long a date or time is written. "Unknown UEStyle".
enum class ICUEStyle : int
{
    Full = 0,
    Long = 1,
    Medium = 2,
    Short = 3,
};

/// A field of a calendar. The numbers are the layer's own, not ICU's. "Unknown calendar date field."
enum class ICUCalendarDateField : int
{
    Year = 0,
    Month = 1,
    Date = 2,
    HourOfDay = 3,
    Minute = 4,
    Second = 5,
    Millisecond = 6,
    WeekOfYear = 7,
    YearOfWeekOfYear = 8,
    DayOfWeek = 9,
    DayOfYear = 10,
};

/// "Unknown day of week."
enum class ICUDayOfWeek : int
{
    Sunday = 1,
    Monday = 2,
    Tuesday = 3,
    Wednesday = 4,
    Thursday = 5,
    Friday = 6,
    Saturday = 7,
};

/// How wide the name of a month or day is. "Unknown width type."
enum class ICUSymbolWidth : int
{
    Abbreviated = 0,
    Wide = 1,
    Narrow = 2,
    Short = 3,
};

/// Whether the name of a month or day stands in a date or alone. "Unknown context type."
enum class ICUSymbolContext : int
{
    Format = 0,
    Standalone = 1,
    Count = 2, ///< ICU's number of contexts, which is handed on like one.
};

/// A symbol of a number format. "Unknown symbol id."
enum class ICUNumberSymbolId : int
{
    DecimalSeparator = 0,
    GroupingSeparator = 1,
    PatternSeparator = 2,
    Percent = 3,
    ZeroDigit = 4,
    Digit = 5,
    MinusSign = 6,
    PlusSign = 7,
    Currency = 8,
    IntlCurrency = 9,
    MonetarySeparator = 10,
    Exponential = 11,
    PerMill = 12,
    PadEscape = 13,
    Infinity = 14,
    NaN = 15,
    SignificantDigit = 16,
    MonetaryGroupingSeparator = 17,
    OneDigit = 18,
};

} // namespace VanICU
