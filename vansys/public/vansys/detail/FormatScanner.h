/// @file
/// The syntax of format strings, for reading them while compiling (TFormatLiteral.h) and while running
/// (TFormatStringCore.cpp). It is here only, so that both accept the same.
#pragma once

#include "vansys/TCodeUnit.h"

namespace vansys::detail
{

/// A marker in a format string.
struct FormatMarker
{
    int start;  ///< the position of the percent sign, in units
    int length; ///< in units
    int number; ///< 0 for `%%`
};

/// Finds the markers of a format string, and returns the highest number of one; 0 when there is none.
///
/// `Iterator` goes through the units, and two of them have a distance. `Sink` is told what is found; it has
/// - `bool IsDigit(TCodeUnit unit)`;
/// - `void AddMarker(FormatMarker const &marker)`;
/// - `int Fail(char const *message)`, which need not return; scanning ends with it.
///
/// A digit's value is its unit less that of "0", whatever script it is from, and only a number of two or more
/// digits is compared with 99. So a marker of one digit that is not ASCII has a large number.
template <class Iterator, class Sentinel, class Sink>
constexpr int ScanFormat(Iterator const begin, Sentinel const end, Sink &sink)
{
    int highestNumber = 0;
    for (Iterator next = begin; next != end;)
    {
        Iterator const start = next;
        if (*next++ != u'%')
            continue;
        if (next == end)
            return sink.Fail("Format string ends with an incomplete marker.");

        TCodeUnit const first = *next++;
        int number = 0;
        if (first != u'%')
        {
            if (first == u'0')
                return sink.Fail("Leading zero in marker number in format string.");
            if (!sink.IsDigit(first))
                return sink.Fail("Invalid numberless marker in format string.");
            number = first - u'0';
            for (; next != end && sink.IsDigit(*next); ++next)
            {
                number = number * 10 + (*next - u'0');
                if (number > 99)
                    return sink.Fail("Invalid marker number > 99 in format string.");
            }
            // It takes a digit in front of "0", which Unicode does not have.
            if (number < 1 && next != end)
                return sink.Fail("Invalid marker number <= 0 in format string.");
            if (number < 1)
                return sink.Fail("Format string ends with an invalid marker number <= 0.");
            if (number > highestNumber)
                highestNumber = number;
        }
        sink.AddMarker(FormatMarker{static_cast<int>(start - begin), static_cast<int>(next - start), number});
    }
    return highestNumber;
}

} // namespace vansys::detail
