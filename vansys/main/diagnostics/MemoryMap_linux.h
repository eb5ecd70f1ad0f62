/// @file
/// What lies where in the memory of a process, and reading it. Linux only; without `malloc` and locks.
#pragma once

#include "main/diagnostics/RawSystem_linux.h"

#include <string_view>

namespace vansys::detail
{

/// A range of memory with the same rights and the same origin: a line of /proc/PID/maps.
struct MappedRange
{
    std::uint64_t start;
    std::uint64_t end;
    std::uint64_t offset; ///< in the file
    std::uint64_t inode;  ///< 0 for memory that is of no file
    std::uint32_t nameOffset;
    std::uint32_t nameSize;
    bool readable;
    bool writable;
    bool executable;
};

/// A program or library in the memory of a process.
struct MappedModule
{
    std::uint64_t base;
    std::uint64_t size;
    std::string_view name; ///< refers to the map
    unsigned buildIdSize;  ///< 0 for none
    unsigned char buildId[64];
};

class MemoryMap
{
public:
    /// Reads what is at /proc/PID/maps. Memory is read by way of `memoryOwner`, which is that process or one
    /// that shares its memory.
    bool Read(int process, int memoryOwner) noexcept;

    /// The file as it is.
    RawArray<char> const &Text() const noexcept { return m_text; }

    /// The range that has the address, or else the first one above. Null where all are below.
    MappedRange const *FindFrom(std::uint64_t address) const noexcept;

    /// The range that has the address; null if none has.
    MappedRange const *Find(std::uint64_t address) const noexcept;

    /// Copies memory of the process, and returns how much there was before the first byte that cannot be
    /// read.
    std::size_t ReadMemory(std::uint64_t address, void *target, std::size_t size) const noexcept;

    /// Appends the modules, by address, but first the one with `entryPoint`.
    bool FindModules(std::uint64_t entryPoint, RawArray<MappedModule> &modules) const noexcept;

private:
    bool Parse() noexcept;
    bool ReadModule(MappedRange const &range, MappedModule &module) const noexcept;

    int m_memoryOwner = 0;
    RawArray<char> m_text;
    RawArray<MappedRange> m_ranges;
};

/// Reads a line of /proc/PID/maps, without its end, into `range`; names lie in it at `nameOffset`. Returns
/// false for anything else.
bool ParseMapLine(std::string_view line, MappedRange &range) noexcept;

} // namespace vansys::detail
