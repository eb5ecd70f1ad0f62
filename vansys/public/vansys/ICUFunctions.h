/// @file
/// ICU's plain functions, all of them that the layer passes on.
///
/// A function `t_NAME` calls ICU's function NAME, of the family that is selected at that moment
/// (`setIcuVersion`), with its arguments unchanged, and returns what that returns. The headers below say what
/// each is for; the details are ICU's.
///
/// - **Status.** A call that gets a failure in `*status` does nothing and leaves it there, so that one test
///   after several calls is enough; what it returns then means nothing. (`t_uloc_getLocaleForLCID` alone
///   looks at its status only to set it.) Initialise it with `U_ZERO_ERROR`. A warning is a success: test
///   with `ICU_SUCCESS` and `ICU_FAILURE`. No function throws.
/// - **Buffers.** A function that fills a buffer returns the length of the whole result, terminator excluded.
///   When the buffer is too short, the status is `U_BUFFER_OVERFLOW_ERROR`; when there is no room for the
///   terminator only, `U_STRING_NOT_TERMINATED_WARNING`. A null buffer with capacity 0 asks for the length.
/// - **Lengths** are counts of units; -1 means zero-terminated. Code points are `int`.
/// - **Truth values** are `signed char`: 0 is false, anything else true.
/// - **Returned text** is zero-terminated and belongs to ICU or to the handle; it is not to be freed.
/// - **Threads.** Functions may be called on any thread. A handle is used by one thread at a time.
#pragma once

#include "vansys/Export.h"
#include "vansys/ICUCharacterFunctions.h"
#include "vansys/ICUCollationFunctions.h"
#include "vansys/ICUConverterFunctions.h"
#include "vansys/ICULocaleFunctions.h"
#include "vansys/ICUSegmentationFunctions.h"
#include "vansys/ICUStringFunctions.h"
#include "vansys/ICUTypes.h"

namespace VanICU
{

/// The name of a status, such as "U_ZERO_ERROR".
VANSYS_API char const *t_u_errorName(ICUErrorCode code);

/// Frees everything that ICU keeps for the process. ICU loads it again when it is used again.
///
/// To be called while no other thread uses the layer, and when every handle and wrapper object is gone; those
/// that the library itself keeps (the named locales) stay usable.
VANSYS_API void t_u_cleanup();

} // namespace VanICU
