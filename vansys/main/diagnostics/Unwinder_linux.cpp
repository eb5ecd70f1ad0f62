#include "main/diagnostics/Unwinder_linux.h"

#include "main/diagnostics/OwnMemory_linux.h"

namespace vansys::detail
{

namespace
{

/// The frame whose caller is looked for. The registers are those at its instruction.
class Unwinder
{
public:
    explicit Unwinder(Registers const &registers) noexcept : m_registers(registers) {}

    enum class Step
    {
        Caller,    ///< the frame is that of the caller now
        Outermost, ///< there is none
        Lost       ///< it cannot be found
    };

    Step ToCaller() noexcept
    {
        if (FindFrameLayout(Current().Instruction(), m_layout))
            return ByTable();
        // A call of a null pointer, or of what is no code, has pushed its return address and nothing else.
        if (m_isInnermost && !IsInModule(ProgramCounter()))
            return BehindCall();
        return ByFramePointer();
    }

    Frame Current() const noexcept { return {ProgramCounter(), m_isInstruction}; }

    /// Known after `ToCaller`.
    bool WasTrampoline() const noexcept { return m_wasTrampoline; }

private:
    std::uintptr_t ProgramCounter() const noexcept { return m_registers[ReturnAddressRegister]; }

    Step ByTable() noexcept
    {
        std::uintptr_t address = 0;
        if (m_layout.address.kind == RegisterRule::Expression)
        {
            if (!EvaluateExpression(m_layout.address, m_registers, 0, m_memory, address))
                return Step::Lost;
        }
        else if (m_layout.address.kind != RegisterRule::Offset || m_layout.addressRegister >= RegisterCount)
            return Step::Lost;
        else
            address =
                m_registers[m_layout.addressRegister] + static_cast<std::uintptr_t>(m_layout.address.offset);

        if (m_layout.registers[m_layout.returnAddressRegister].kind == RegisterRule::Undefined)
            return Step::Outermost;
        Registers caller = m_registers;
        caller[StackPointerRegister] = address;
        for (std::size_t number = 0; number < RegisterCount; ++number)
            if (!Restore(m_layout.registers[number], address, caller[number]))
                return Step::Lost;
        caller[ReturnAddressRegister] = caller[m_layout.returnAddressRegister];
        return MoveTo(caller, m_layout.isSignalFrame);
    }

    bool Restore(RegisterRule const &rule, std::uintptr_t address, std::uintptr_t &value) noexcept
    {
        std::uintptr_t const at = address + static_cast<std::uintptr_t>(rule.offset);
        switch (rule.kind)
        {
        case RegisterRule::Offset:
            return m_memory.Read(at, value);
        case RegisterRule::ValueOffset:
            value = at;
            return true;
        case RegisterRule::Register:
            if (static_cast<std::uint64_t>(rule.offset) >= RegisterCount)
                return false;
            value = m_registers[static_cast<std::size_t>(rule.offset)];
            return true;
        case RegisterRule::Expression:
            return EvaluateExpression(rule, m_registers, address, m_memory, value) &&
                   m_memory.Read(value, value);
        case RegisterRule::ValueExpression:
            return EvaluateExpression(rule, m_registers, address, m_memory, value);
        default:
            return true;
        }
    }

    Step BehindCall() noexcept
    {
        Registers caller = m_registers;
        std::uintptr_t const stackPointer = m_registers[StackPointerRegister];
        if (!m_memory.Read(stackPointer, caller[ReturnAddressRegister]))
            return Step::Lost;
        if (!IsInModule(caller[ReturnAddressRegister]))
            return ByFramePointer();
        caller[StackPointerRegister] = stackPointer + sizeof(std::uintptr_t);
        return MoveTo(caller, false);
    }

    Step ByFramePointer() noexcept
    {
        Registers caller = m_registers;
        std::uintptr_t const framePointer = m_registers[FramePointerRegister];
        constexpr std::uintptr_t Word = sizeof framePointer;
        if (framePointer < m_registers[StackPointerRegister] ||
            !m_memory.Read(framePointer, caller[FramePointerRegister]) ||
            !m_memory.Read(framePointer + Word, caller[ReturnAddressRegister]))
            return Step::Lost;
        caller[StackPointerRegister] = framePointer + 2 * Word;
        return MoveTo(caller, false);
    }

    /// `wasInterrupted` tells whether the caller has not called, but a signal has come in between.
    Step MoveTo(Registers const &caller, bool wasInterrupted) noexcept
    {
        // Callers are above, but for the other side of a signal, whose handler may have a stack of its own.
        if (!wasInterrupted && caller[StackPointerRegister] <= m_registers[StackPointerRegister])
            return Step::Lost;
        m_wasTrampoline = wasInterrupted;
        if (caller[ReturnAddressRegister] == 0 && !wasInterrupted)
            return Step::Outermost;
        m_registers = caller;
        m_isInstruction = wasInterrupted;
        m_isInnermost = wasInterrupted;
        return Step::Caller;
    }

    Registers m_registers;
    bool m_isInstruction = true;
    bool m_isInnermost = true;
    bool m_wasTrampoline = false;
    OwnMemory m_memory;
    FrameLayout m_layout;
};

} // namespace

Registers RegistersOf(ucontext_t const &context) noexcept
{
    // The kernel has an order of its own.
    constexpr std::array<int, RegisterCount> Order = {REG_RAX, REG_RDX, REG_RCX, REG_RBX, REG_RSI, REG_RDI,
                                                      REG_RBP, REG_RSP, REG_R8,  REG_R9,  REG_R10, REG_R11,
                                                      REG_R12, REG_R13, REG_R14, REG_R15, REG_RIP};
    Registers registers{};
    for (std::size_t i = 0; i < RegisterCount; ++i)
        registers[i] =
            static_cast<std::uintptr_t>(context.uc_mcontext.gregs[static_cast<std::size_t>(Order[i])]);
    return registers;
}

Registers RegistersOf(user_regs_struct const &registers) noexcept
{
    return {registers.rax, registers.rdx, registers.rcx, registers.rbx, registers.rsi, registers.rdi,
            registers.rbp, registers.rsp, registers.r8,  registers.r9,  registers.r10, registers.r11,
            registers.r12, registers.r13, registers.r14, registers.r15, registers.rip};
}

UnwoundFrames Unwind(Registers registers, Frame *frames, std::size_t capacity) noexcept
{
    UnwoundFrames result;
    Unwinder unwinder(registers);
    while (result.count < capacity)
    {
        Frame const frame = unwinder.Current();
        Unwinder::Step const step = unwinder.ToCaller();
        if (step != Unwinder::Step::Caller || !unwinder.WasTrampoline())
            frames[result.count++] = frame;
        if (step != Unwinder::Step::Caller)
        {
            result.isComplete = step == Unwinder::Step::Outermost;
            break;
        }
    }
    return result;
}

} // namespace vansys::detail
