#include "main/diagnostics/CaptureStack.h"

#include <unwind.h>

namespace vansys::detail
{

namespace
{

struct Capture
{
    std::uintptr_t *addresses;
    std::size_t capacity;
    std::size_t toSkip;
    std::size_t count = 0;
};

_Unwind_Reason_Code TakeFrame(_Unwind_Context *context, void *argument)
{
    Capture &capture = *static_cast<Capture *>(argument);
    if (capture.toSkip > 0)
    {
        --capture.toSkip;
        return _URC_NO_REASON;
    }
    std::uintptr_t const address = _Unwind_GetIP(context);
    if (address == 0 || capture.count == capture.capacity)
        return _URC_END_OF_STACK;
    capture.addresses[capture.count++] = address;
    return _URC_NO_REASON;
}

} // namespace

[[gnu::noinline]] std::size_t CaptureStack(std::uintptr_t *addresses, std::size_t capacity,
                                           std::size_t skip) noexcept
{
    // The first frame is that of this function.
    Capture capture{addresses, capacity, skip + 1};
    _Unwind_Backtrace(&TakeFrame, &capture);
    return capture.count;
}

} // namespace vansys::detail
