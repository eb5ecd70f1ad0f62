/// @file
/// What a wrapper does when ICU fails in an operation that has no status for its caller.
#pragma once

#include "vansys/ThrowLogicException.h"

#include <unicode/utypes.h>

namespace vansys::detail
{

/// Reports a failure in one of the sources that a family names. Returns whether there was none: the report
/// returns where a hook decides so, and the caller needs a way to go on.
inline bool CheckStatus(UErrorCode status, char const *source, int line)
{
    if (U_SUCCESS(status))
        return true;
    ThrowLogicException(source, line, "U_SUCCESS(status)");
    return false;
}

/// The same for what ICU gives as a pointer.
inline bool CheckPointer(void const *pointer, char const *source, int line)
{
    if (pointer)
        return true;
    ThrowLogicException(source, line, "ptr != nullptr");
    return false;
}

} // namespace vansys::detail
