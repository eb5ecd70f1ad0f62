/// @file
/// OwnMemory: reads memory of this process that may not be there. Linux only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace vansys::detail
{

/// Reads words of a stack that may be damaged, or may not be one at all: what cannot be read is reported, and
/// kills nobody. Reads a few hundred bytes ahead. Allocates nothing, takes no lock, and leaves `errno` alone:
/// for signal handlers, and for a process that shares this one's memory.
class OwnMemory
{
public:
    /// False when the word cannot be read, or its address is not a multiple of its size, as all of a stack
    /// are.
    bool Read(std::uintptr_t address, std::uintptr_t &word) noexcept;

private:
    static constexpr std::size_t WindowSize = 512;

    alignas(std::uintptr_t) std::array<unsigned char, WindowSize> m_window;
    std::uintptr_t m_windowBegin = 0; ///< no word can be read at 0
};

} // namespace vansys::detail
