#include "vansys/TPathCoreException.h"

TPathCore::Exception::Exception(TStringCore const &message, bool captureCallStack)
    : VantrelExceptionOf(message)
{
    static_cast<void>(captureCallStack);
}

TPathCore::Exception::~Exception() = default;
