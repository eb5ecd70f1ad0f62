#include "vansys/TPathCoreException.h"

#include "vansys/TStackWalkerCollector.h"

#include <string>

TPathCore::Exception::Exception(TStringCore const &message, bool captureCallStack)
    : VantrelExceptionOf(message)
{
    if (!captureCallStack)
        return;
    TStackWalkerCollector walker;
    walker.GenerateCallstack();
    for (std::string const &line : walker.GetCallstack())
        StackMessage(line.c_str());
}

TPathCore::Exception::~Exception() = default;
