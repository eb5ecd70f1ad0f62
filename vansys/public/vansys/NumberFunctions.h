/// @file
/// NumberFunctions: numbers as text.
#pragma once

#include "vansys/Export.h"
#include "vansys/Forward.h"
#include "vansys/TCodeUnit.h"
#include "vansys/detail/TwinText.h"

namespace vansys
{

/// Makes text of numbers, and measures the numbers at the start of raw text. `TStringCore` inherits from this
/// class, and its header is the one to include: `TStringCore::number(5)`.
///
/// **Threads.** Nothing is shared; each function may run on any number of threads.
class VANSYS_API NumberFunctions
{
public:
    // Numbers to text. What returns a string throws `TStringCore::Exception` "Out of memory".

    /// The number in a base of 2 to 36: digits above 9 are lower case letters, and a negative number is "-"
    /// and its magnitude in every base. Throws `TStringCore::Exception` "TStringCore::number: base out of
    /// range." for any other base.
    ///
    /// A positive field width right-justifies the number, a negative one left-justifies it; `fill` stands
    /// before a sign. A number that is longer than the field is written whole.
    static TStringCore number(long long value, int base = 10, int fieldWidth = 0, TCodeUnit fill = u' ');
    static TStringCore number(unsigned long long value, int base = 10, int fieldWidth = 0,
                              TCodeUnit fill = u' ');
    static TStringCore number(short value, int base = 10, int fieldWidth = 0, TCodeUnit fill = u' ');
    static TStringCore number(unsigned short value, int base = 10, int fieldWidth = 0, TCodeUnit fill = u' ');
    static TStringCore number(int value, int base = 10, int fieldWidth = 0, TCodeUnit fill = u' ');
    static TStringCore number(unsigned int value, int base = 10, int fieldWidth = 0, TCodeUnit fill = u' ');
    static TStringCore number(long value, int base = 10, int fieldWidth = 0, TCodeUnit fill = u' ');
    static TStringCore number(unsigned long value, int base = 10, int fieldWidth = 0, TCodeUnit fill = u' ');

    /// The value as C's `printf` prints it for the format letter and the precision. The letter is one of
    /// "eEfFgG"; any other is read as "g". A negative precision means 6. The exponent has at least two
    /// digits, a zero never has a sign, and values without digits are "inf", "-inf" and "nan", in lower case
    /// for every letter. The decimal separator is "." whatever the locale.
    ///
    /// `tidy` makes it plain that the number has a fraction, and drops its needless digits: with "g" and "G"
    /// ".0" is inserted where there is no point; with the others trailing zeros go, but for one after the
    /// point. Note that zeros go even where no point is printed: with precision 0, 100 is "1" with "f", and
    /// -0.0, which then loses its sign, is "".
    static TStringCore number(double value, char format = 'g', int precision = 6, bool tidy = false);

    /// The address in hexadecimal, padded with zeros to the width of a pointer, after "0x" when `prefix` is
    /// set. `upperCase` is about the digits; the prefix stays as it is.
    static TStringCore pointer(void const *address, bool prefix = true, bool upperCase = false);

    // Measuring. **Text** is given as in `StringFunctions`.

    /// How many leading units form an integer in `base`, 2 to 36.
    ///
    /// Before the digits there may be one "+" or "-" in base 10, and "0x" or "0X" in base 16; no base takes
    /// anything else. (The readers, and `TScanStringCore::readInt`, take a sign in every base.) Where nothing
    /// follows them the result is 0. A digit is a unit that, with its bit 0x20 set, is in "0" to "9" or in
    /// "a" to the last letter of the base. So decimal digits count in every base, the control units U+0010 to
    /// U+0019 count too, and the readers (`TStringCore::toInt`) may still refuse what is measured here.
    ///
    /// Base 0 takes the base from a text of two or more units: "0x" or "0X" is 16, another "0" is 8, the rest
    /// is 10. Throws `TStringCore::Exception` "TStringCore::parseInteger: base out of range." for any other
    /// base, and for base 0 with a text of one unit. A text that is null, or empty, or begins with a zero
    /// unit gives 0.
    static int leftIntegerLength(TCodeUnit const *text, int length, int base = 10);
    static int leftIntegerLength(TWideTwin const *text, int length, int base = 10);

    /// How many leading units form a floating-point number: an optional sign; then "inf", "infinity" or "nan"
    /// in any case, or digits with an optional fraction, or a fraction alone, and an exponent, which counts
    /// only when it has digits. A fraction behind digits may be a mere point. ASCII digits only; no blanks,
    /// no hexadecimal form, and "." whatever the locale. 0 when there is none.
    static int leftDoubleLength(TCodeUnit const *text, int length);
    static int leftDoubleLength(TWideTwin const *text, int length)
    {
        detail::TwinText const twin(text, length);
        return twin.position(leftDoubleLength(twin.units(), twin.length()));
    }
};

} // namespace vansys
