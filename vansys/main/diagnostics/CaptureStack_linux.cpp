#include "main/diagnostics/CaptureStack.h"

#include "main/diagnostics/LoadedModules_linux.h"
#include "main/diagnostics/UnwindTable_linux.h"

#include <array>
#include <atomic>
#include <bit>
#include <limits>

#include <unwind.h>

namespace vansys::detail
{

namespace
{

/// How to get from a frame to its caller: what of a `FrameLayout` nearly all functions get along with. One
/// word, so that it can be kept in an atomic one.
struct Step
{
    enum Kind : std::uint8_t
    {
        ByStackPointer,
        ByFramePointer,
        Outermost, ///< no caller is known
        Unusual    ///< it takes all of the unwinding table
    };

    Kind kind = Unusual;
    bool isFramePointerSaved = false;
    std::int16_t framePointerOffset = 0; ///< from the frame's address to where the caller's was saved
    std::int32_t addressOffset = 0;      ///< from the register to the frame's address
};

template <class Narrow>
bool Fits(std::int64_t number) noexcept
{
    return number >= std::numeric_limits<Narrow>::min() && number <= std::numeric_limits<Narrow>::max();
}

/// Of the frame that returns to this address.
Step FindStep(std::uintptr_t returnAddress) noexcept
{
    constexpr std::int64_t BelowAddress = -static_cast<std::int64_t>(sizeof returnAddress);
    Step step;
    FrameLayout layout;
    if (!FindFrameLayout(returnAddress - 1, layout))
    {
        step.kind = Step::Outermost;
        return step;
    }
    RegisterRule const &caller = layout.registers[layout.returnAddressRegister];
    RegisterRule const &framePointer = layout.registers[FramePointerRegister];
    bool const isByStackPointer = layout.addressRegister == StackPointerRegister;
    if (caller.kind == RegisterRule::Undefined)
    {
        step.kind = Step::Outermost;
        return step;
    }
    if (layout.isSignalFrame || caller.kind != RegisterRule::Offset || caller.offset != BelowAddress ||
        layout.address.kind != RegisterRule::Offset || !Fits<std::int32_t>(layout.address.offset) ||
        (!isByStackPointer && layout.addressRegister != FramePointerRegister) ||
        layout.registers[StackPointerRegister].kind != RegisterRule::Same)
    {
        return step;
    }
    if (framePointer.kind == RegisterRule::Offset && Fits<std::int16_t>(framePointer.offset))
    {
        step.isFramePointerSaved = true;
        step.framePointerOffset = static_cast<std::int16_t>(framePointer.offset);
    }
    else if (framePointer.kind != RegisterRule::Same)
        return step;
    step.addressOffset = static_cast<std::int32_t>(layout.address.offset);
    step.kind = isByStackPointer ? Step::ByStackPointer : Step::ByFramePointer;
    return step;
}

struct StepSlot
{
    std::atomic<std::uint64_t> step{0};
    std::atomic<std::uint64_t> check{0};
};

constexpr int StepSlotBits = 11;

/// The steps of return addresses, those that were met last. Any thread uses it at any time.
///
/// A slot is two words that are written one after the other without a lock. Their difference must be the
/// address and the generation of the modules: where two threads wrote at the same time, or other modules are
/// loaded since, it is not, and the slot counts as empty.
class StepCache
{
public:
    static Step Get(std::uintptr_t returnAddress, std::uint64_t generation) noexcept
    {
        constexpr std::uint64_t Multiplier = 0x9E3779B97F4A7C15; // odd: no two generations have one product
        std::uint64_t const key = returnAddress ^ (generation * Multiplier);
        StepSlot &slot = s_slots[(returnAddress * Multiplier) >> (64 - StepSlotBits)];
        std::uint64_t const known = slot.step.load(std::memory_order_relaxed);
        if ((slot.check.load(std::memory_order_relaxed) ^ known) == key)
            return std::bit_cast<Step>(known);
        Step const step = FindStep(returnAddress);
        auto const word = std::bit_cast<std::uint64_t>(step);
        slot.step.store(word, std::memory_order_relaxed);
        slot.check.store(key ^ word, std::memory_order_relaxed);
        return step;
    }

private:
    inline static constinit std::array<StepSlot, std::size_t{1} << StepSlotBits> s_slots{};
};

static_assert(sizeof(Step) == sizeof(std::uint64_t), "or it has bytes of no meaning");

/// Takes addresses.
struct Capture
{
    std::uintptr_t *addresses;
    std::size_t capacity;
    std::size_t toSkip;
    std::size_t count = 0;

    bool IsFull() const noexcept { return count == capacity; }

    void Take(std::uintptr_t address) noexcept
    {
        if (toSkip > 0)
            --toSkip;
        else
            addresses[count++] = address;
    }

    void DropLast() noexcept
    {
        if (count > 0)
            --count;
        else
            ++toSkip;
    }
};

std::uintptr_t WordAt(std::uintptr_t address) noexcept
{
    return *std::bit_cast<std::uintptr_t const *>(address);
}

/// Takes the return address and those of its callers. Returns false where a frame is unusual.
bool TakeQuickly(Capture &capture, std::uintptr_t returnAddress, std::uintptr_t stackPointer,
                 std::uintptr_t framePointer) noexcept
{
    std::uint64_t const generation = ModuleGeneration();
    while (returnAddress != 0 && !capture.IsFull())
    {
        capture.Take(returnAddress);
        Step const step = StepCache::Get(returnAddress, generation);
        if (step.kind == Step::Outermost)
            return true;
        if (step.kind == Step::Unusual)
            return false;
        std::uintptr_t const address = (step.kind == Step::ByStackPointer ? stackPointer : framePointer) +
                                       static_cast<std::uintptr_t>(std::intptr_t{step.addressOffset});
        if (address <= stackPointer || address % sizeof address != 0)
            return false;
        if (step.isFramePointerSaved)
            framePointer =
                WordAt(address + static_cast<std::uintptr_t>(std::intptr_t{step.framePointerOffset}));
        returnAddress = WordAt(address - sizeof address);
        stackPointer = address;
    }
    return true;
}

_Unwind_Reason_Code TakeFrame(_Unwind_Context *context, void *argument)
{
    Capture &capture = *static_cast<Capture *>(argument);
    int isInstruction = 0;
    std::uintptr_t const address = _Unwind_GetIPInfo(context, &isInstruction);
    if (isInstruction)
        capture.DropLast(); // that of the trampoline from which the signal handler was called
    if (address == 0 || capture.IsFull())
        return _URC_END_OF_STACK;
    // What was interrupted is before no call: it is made to look like that.
    capture.Take(isInstruction ? address + 1 : address);
    return _URC_NO_REASON;
}

} // namespace

[[gnu::noinline]] std::size_t CaptureStack(std::uintptr_t *addresses, std::size_t capacity,
                                           std::size_t skip) noexcept
{
    // This function has a frame pointer for this, and with it the usual frame: the caller's frame pointer,
    // then the return address.
    auto const frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    Capture capture{addresses, capacity, skip};
    if (TakeQuickly(capture, WordAt(frame + sizeof frame), frame + 2 * sizeof frame, WordAt(frame)))
        return capture.count;

    // The first frame is that of this function.
    capture = {addresses, capacity, skip + 1};
    _Unwind_Backtrace(&TakeFrame, &capture);
    return capture.count;
}

} // namespace vansys::detail
