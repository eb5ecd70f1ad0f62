/// @file
/// StringFunctions: what `TStringCore` does with raw text.
#pragma once

#include "vansys/Export.h"
#include "vansys/Forward.h"
#include "vansys/TCodeUnit.h"
#include "vansys/detail/TwinText.h"

#include <cstddef>
#include <vector>

namespace vansys
{

/// Measures, compares, searches and cuts text that need not be a `TStringCore`. That class inherits from this
/// one, and its header is the one to include: `TStringCore::findStr(...)`.
///
/// **Text** is given as a pointer and a length in elements; a negative length means "up to the first zero".
/// Where there is no length, the text ends at its first zero. A null pointer is the empty text.
///
/// **The twin** of each function takes the other wide type (see TCodeUnit.h), and all its counts and
/// positions are those of that type. It may allocate, and so throw `TStringCore::Exception` "Out of memory".
/// The functions themselves throw only where it is said.
///
/// **Threads.** Nothing is shared; each function may run on any number of threads.
class VANSYS_API StringFunctions
{
public:
    /// Whether letters that differ in case only are the same. Case is folded unit by unit: the simple case
    /// folding of Unicode, with default options, for each unit that is no surrogate. No locale plays a part.
    enum CaseSensitivity
    {
        CaseInsensitive = 0,
        CaseSensitive = 1,
    };

    /// What becomes of parts without any unit. Every value but 0 skips them (`tokenize` knows 1 only).
    enum SplitBehavior : int
    {
        KeepEmptyParts = 0,
        SkipEmptyParts = 1,
    };

    /// How `section` reads and cuts. The values combine with `|`.
    enum SectionFlags
    {
        SectionDefault = 0,
        SectionSkipEmpty = 1,           ///< sections without any unit do not count
        SectionIncludeLeadingSep = 2,   ///< with the separator before the first section
        SectionIncludeTrailingSep = 4,  ///< with the separator after the last section
        SectionCaseInsensitiveSeps = 8, ///< separators are found without regard to case
    };

    friend constexpr SectionFlags operator|(SectionFlags a, SectionFlags b) noexcept
    {
        return static_cast<SectionFlags>(static_cast<unsigned int>(a) | static_cast<unsigned int>(b));
    }

    // Length

    /// The number of elements before the zero; 0 for null. Throws `TStringCore::Exception` "Allocation size
    /// less than zero; probable overflow" when no `int` can hold it.
    static int length(TCodeUnit const *text);
    static int length(TWideTwin const *text);

    /// The number of bytes before the zero; 0 for null.
    static std::size_t lengthInBytes(TCodeUnit const *text);
    static std::size_t lengthInBytes(TWideTwin const *text);

    /// The number of code points before the zero; 0 for null.
    static int lengthInCodePoints(TCodeUnit const *text);
    static int lengthInCodePoints(TWideTwin const *text);

    // Comparison

    /// -1, 0 or 1 as `a` comes before, equals or follows `b`: by (folded) code unit, as unsigned 16-bit
    /// values, the shorter text first. No locale plays a part: to sort for people's eyes, use a collator.
    static int compare(TCodeUnit const *a, TCodeUnit const *b, CaseSensitivity sensitivity = CaseSensitive);
    static int compare(TWideTwin const *a, TWideTwin const *b, CaseSensitivity sensitivity = CaseSensitive)
    {
        return compare(detail::TwinText(a).units(), detail::TwinText(b).units(), sensitivity);
    }

    /// `compare` of at most the first `count` units of each; of all when `count` is negative.
    static int compareN(TCodeUnit const *a, TCodeUnit const *b, int count,
                        CaseSensitivity sensitivity = CaseSensitive);
    static int compareN(TWideTwin const *a, TWideTwin const *b, int count,
                        CaseSensitivity sensitivity = CaseSensitive);

    // Search. The result is the position of the first match at or after `start`, or -1. A negative `start` is
    // 0. The time is linear: in proportion to the units passed over and those of the needle, whatever the
    // text and with either sensitivity. Nothing is allocated, but for converting twins.

    /// An empty needle is found at `start`, when that lies in 0 to the text's length.
    static int findStr(TCodeUnit const *text, int length, TCodeUnit const *needle, int needleLength,
                       int start = 0, CaseSensitivity sensitivity = CaseSensitive);
    static int findStr(TWideTwin const *text, int length, TWideTwin const *needle, int needleLength,
                       int start = 0, CaseSensitivity sensitivity = CaseSensitive);

    static int findChar(TCodeUnit const *text, int length, TCodeUnit unit, int start = 0,
                        CaseSensitivity sensitivity = CaseSensitive);
    static int findChar(TWideTwin const *text, int length, TWideTwin unit, int start = 0,
                        CaseSensitivity sensitivity = CaseSensitive)
    {
        return findStr(text, length, &unit, 1, start, sensitivity);
    }

    /// The first unit that is in the set. Takes time for each unit passed over; where that is not ASCII, in
    /// proportion to the size of the set at worst. Each half of a surrogate pair is a unit of its own; where
    /// the twin is UTF-32, its sets are ones of code points.
    static int findOneOf(TCodeUnit const *text, int length, TCodeUnit const *set, int setLength,
                         int start = 0);
    static int findOneOf(TWideTwin const *text, int length, TWideTwin const *set, int setLength,
                         int start = 0);

    /// The first unit, or code point, that is not in the set.
    static int findOneNotOf(TCodeUnit const *text, int length, TCodeUnit const *set, int setLength,
                            int start = 0);
    static int findOneNotOf(TWideTwin const *text, int length, TWideTwin const *set, int setLength,
                            int start = 0);

    // Cutting: see the members of TStringCore of the same names.

    static TStringCore section(TCodeUnit const *text, int length, TCodeUnit const *separator,
                               int separatorLength, int first, int last, SectionFlags flags = SectionDefault);
    static TStringCore section(TWideTwin const *text, int length, TWideTwin const *separator,
                               int separatorLength, int first, int last, SectionFlags flags = SectionDefault);

    static std::vector<TStringCore> split(TCodeUnit const *text, int length, TCodeUnit const *separator,
                                          int separatorLength, SplitBehavior behavior = KeepEmptyParts,
                                          CaseSensitivity sensitivity = CaseSensitive);
    static std::vector<TStringCore> split(TWideTwin const *text, int length, TWideTwin const *separator,
                                          int separatorLength, SplitBehavior behavior = KeepEmptyParts,
                                          CaseSensitivity sensitivity = CaseSensitive);

    static std::vector<TStringCore> splitOnAny(TCodeUnit const *text, int length, TCodeUnit const *set,
                                               int setLength, SplitBehavior behavior = KeepEmptyParts);
    static std::vector<TStringCore> splitOnAny(TWideTwin const *text, int length, TWideTwin const *set,
                                               int setLength, SplitBehavior behavior = KeepEmptyParts);

    // Line ends

    /// Converts zero-terminated text in place; see `TStringCore::dosToUnix`. Returns the new length. Null is
    /// left alone.
    static int dosToUnix(TCodeUnit *text);
    static int dosToUnix(TWideTwin *text);
};

} // namespace vansys
