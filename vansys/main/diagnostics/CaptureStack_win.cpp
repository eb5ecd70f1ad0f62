#include "main/diagnostics/CaptureStack.h"

#include "main/platform/Windows.h"

#include <unwind.h>

namespace vansys::detail
{

namespace
{

/// The number that unwinding tables have for the frame pointer, EBP.
constexpr int FramePointer = 5;

struct Capture
{
    std::uintptr_t *addresses;
    std::size_t capacity;
    std::size_t toSkip;
    std::size_t count = 0;
    std::uintptr_t framePointer = 0; ///< that of the last frame

    bool IsFull() const noexcept { return count == capacity; }

    void Take(std::uintptr_t address) noexcept
    {
        if (toSkip > 0)
            --toSkip;
        else if (!IsFull())
            addresses[count++] = address;
    }
};

_Unwind_Reason_Code TakeFrame(_Unwind_Context *context, void *argument)
{
    Capture &capture = *static_cast<Capture *>(argument);
    std::uintptr_t const address = _Unwind_GetIP(context);
    if (address == 0 || capture.IsFull())
        return _URC_END_OF_STACK;
    capture.Take(address);
    capture.framePointer = _Unwind_GetGR(context, FramePointer);
    return _URC_NO_REASON;
}

/// Goes on from a function that has no unwinding table, as those of the system and of hosts built by other
/// compilers: these keep a chain of frame pointers.
void FollowFramePointers(Capture &capture) noexcept
{
    ULONG_PTR lowest = 0;
    ULONG_PTR top = 0;
    GetCurrentThreadStackLimits(&lowest, &top);
    auto bottom = reinterpret_cast<std::uintptr_t>(&capture);
    std::uintptr_t frame = capture.framePointer;
    while (!capture.IsFull() && frame > bottom && frame % sizeof frame == 0 &&
           top - frame > 2 * sizeof frame && frame < top)
    {
        auto const *const words = reinterpret_cast<std::uintptr_t const *>(frame);
        if (words[1] == 0)
            return;
        capture.Take(words[1]);
        bottom = frame;
        frame = words[0];
    }
}

} // namespace

[[gnu::noinline]] std::size_t CaptureStack(std::uintptr_t *addresses, std::size_t capacity,
                                           std::size_t skip) noexcept
{
    // The first frame is that of this function.
    Capture capture{addresses, capacity, skip + 1};
    _Unwind_Backtrace(&TakeFrame, &capture);
    FollowFramePointers(capture);
    return capture.count;
}

} // namespace vansys::detail
