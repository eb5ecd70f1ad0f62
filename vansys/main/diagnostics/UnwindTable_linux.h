/// @file
/// How functions lay out their frames, as the modules' tables for exceptions (`.eh_frame`) tell. x86-64 Linux
/// only.
///
/// The format is that of the DWARF standard, version 4, section 6.4, with what the Linux Standard Base adds
/// to it. Registers have their numbers of the x86-64 ABI. Nothing here allocates or takes a lock.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vansys::detail
{

class OwnMemory;

inline constexpr std::size_t FramePointerRegister = 6;
inline constexpr std::size_t StackPointerRegister = 7;
inline constexpr std::size_t ReturnAddressRegister = 16; ///< of a frame itself: its program counter
inline constexpr std::size_t RegisterCount = 17;

using Registers = std::array<std::uintptr_t, RegisterCount>;

/// Reads tables of a module. After a read beyond the end it has failed, and gives zeros.
class TableReader
{
public:
    TableReader() noexcept = default;
    TableReader(unsigned char const *begin, unsigned char const *end) noexcept
        : m_begin(begin),
          m_position(begin),
          m_end(end)
    {
    }

    bool HasFailed() const noexcept { return m_hasFailed; }
    bool IsAtEnd() const noexcept { return m_hasFailed || m_position == m_end; }
    unsigned char const *Position() const noexcept { return m_position; }

    /// Moves on or back.
    void Skip(std::int64_t count) noexcept;

    /// The same table from that address on.
    TableReader At(std::uintptr_t address) const noexcept;

    /// Ends `size` bytes behind here.
    TableReader First(std::uint64_t size) const noexcept;

    template <class Number>
    Number Read() noexcept
    {
        Number number{};
        if (static_cast<std::size_t>(m_end - m_position) < sizeof number)
            m_hasFailed = true;
        else
        {
            std::memcpy(&number, m_position, sizeof number);
            m_position += sizeof number;
        }
        return number;
    }

    /// Numbers of any length, 7 bits in a byte.
    std::uint64_t ReadUnsigned() noexcept;
    std::int64_t ReadSigned() noexcept;

    /// A pointer in one of the encodings of exception tables, relative to itself or to `base`.
    std::uintptr_t ReadPointer(unsigned char encoding, std::uintptr_t base) noexcept;

private:
    unsigned char const *m_begin = nullptr;
    unsigned char const *m_position = nullptr;
    unsigned char const *m_end = nullptr;
    bool m_hasFailed = false;
};

/// How to find the value that a register has in the caller.
struct RegisterRule
{
    enum Kind : unsigned char
    {
        Same,      ///< it has not changed
        Undefined, ///< it is lost; of a return address: there is no caller
        Offset,    ///< saved at the frame's address and `offset`
        ValueOffset,
        Register,   ///< it is in the register with the number `offset`
        Expression, ///< saved where the expression says
        ValueExpression
    };

    Kind kind = Same;
    std::int64_t offset = 0; ///< of an expression: its size
    unsigned char const *expression = nullptr;
};

/// The layout of a frame at one instruction of a function.
struct FrameLayout
{
    /// The frame's address: `Offset` to a register, or an expression.
    RegisterRule address;
    std::size_t addressRegister = 0;
    std::array<RegisterRule, RegisterCount> registers;
    std::size_t returnAddressRegister = ReturnAddressRegister;
    bool isSignalFrame = false; ///< of a signal trampoline: the frame below was interrupted
};

/// Whether the instruction lies in a module that is loaded.
bool IsInModule(std::uintptr_t instruction) noexcept;

/// False when the tables do not tell.
bool FindFrameLayout(std::uintptr_t instruction, FrameLayout &layout) noexcept;

/// The value of an expression, which begins with `initial`. False when it cannot be computed.
bool EvaluateExpression(RegisterRule const &expression, Registers const &registers, std::uintptr_t initial,
                        OwnMemory &memory, std::uintptr_t &value) noexcept;

} // namespace vansys::detail
