/// @file
/// From the layer's own enumerations to ICU's.
#pragma once

#include "vansys/ICUFormatTypes.h"

#include <unicode/datefmt.h>
#include <unicode/dcfmtsym.h>
#include <unicode/dtfmtsym.h>
#include <unicode/ucal.h>

namespace vansys::detail
{

// Each throws a VantrelException for a value that is not enumerated, with the message that ICUFormatTypes.h
// gives for the enumeration.

icu::DateFormat::EStyle ToIcu(VanICU::ICUEStyle style);
UCalendarDateFields ToIcu(VanICU::ICUCalendarDateField field);
UCalendarDaysOfWeek ToIcu(VanICU::ICUDayOfWeek day);
icu::DateFormatSymbols::DtWidthType ToIcu(VanICU::ICUSymbolWidth width);
icu::DateFormatSymbols::DtContextType ToIcu(VanICU::ICUSymbolContext context);
icu::DecimalFormatSymbols::ENumberFormatSymbol ToIcu(VanICU::ICUNumberSymbolId symbol);

} // namespace vansys::detail
