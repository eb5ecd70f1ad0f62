/// @file
/// The modules and symbols of a process that has crashed. Linux only; without `malloc` and locks.
#pragma once

#include "main/diagnostics/CrashText.h"
#include "main/diagnostics/MemoryMap_linux.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vansys::detail
{

class DebugFile;

/// What is loaded in this process, which has to be the copy of the crashed one: this may hang or crash over
/// what it reads, and gives nothing back.
class CrashSymbols
{
public:
    bool Read() noexcept;

    /// Adds the line of a frame.
    void AppendFrame(CrashText &text, std::size_t number, Frame const &frame) const noexcept;

    /// Adds a line for each module.
    void AppendModules(CrashText &text) const noexcept;

private:
    /// Adds to the line what the debugging information and the symbols of the module say about the address.
    void LookUp(MappedModule const &module, std::uintptr_t address, CrashFrameLine &line) const noexcept;

    MemoryMap m_map;
    RawArray<MappedModule> m_modules;
    RawArray<DebugFile *> m_files; ///< of each module; null until something is looked up in it
};

/// Adds the name of a type, undecorated.
void AppendTypeName(CrashText &text, char const *symbol) noexcept;

} // namespace vansys::detail
