/// @file
/// TPathCore::Exception: what paths throw.
#pragma once

#include "vansys/Export.h"
#include "vansys/TPathCore.h"
#include "vansys/VantrelExceptionOf.h"

/// What paths throw of their own: a message, and the call stack where it is asked for. Paths themselves never
/// ask for it.
class VANSYS_API TPathCore::Exception : public VantrelExceptionOf<TPathCore::Exception>
{
public:
    /// Stacks the message. With `captureCallStack`, each line of the calling thread's stack follows as a
    /// message of its own, as `TStackWalker` makes it, this constructor's first. The names are looked up at
    /// once, which may take milliseconds. What `VantrelException::CaptureCallStacks` does is not affected.
    Exception(TStringCore const &message, bool captureCallStack);

    Exception(Exception const &) = default;
    Exception &operator=(Exception const &) = default;
    ~Exception() override;
};
