/// @file
/// The modules of this process: the program and its shared libraries.
#pragma once

#include "main/diagnostics/DebugFile_linux.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vansys::detail
{

/// A module, as the dynamic linker has loaded it.
struct LoadedModule
{
    std::string path; ///< of its file; may be relative, or no file at all, as that of the kernel's own module
    bool isProgram = false;
    std::uintptr_t bias = 0; ///< what is added to the addresses in the file
    std::uintptr_t base = 0; ///< the lowest address
    std::vector<std::pair<std::uintptr_t, std::uintptr_t>> segments; ///< beginnings and ends

    /// Of what is loaded: the program headers and the notes, of which the build id is one. Tells whether a
    /// file is the one that was loaded.
    std::uint64_t fingerprint = 0;

    bool Contains(std::uintptr_t address) const noexcept;

    /// Refers to the path here.
    ModuleFile File() const noexcept { return {path.c_str(), isProgram, bias, fingerprint}; }

    /// Whether both are the same file, loaded at the same place.
    bool operator==(LoadedModule const &) const noexcept = default;
};

/// All modules at one time.
struct LoadedModules
{
    std::uint64_t generation = 0;
    std::vector<LoadedModule> modules;
};

/// A number that changes whenever a module is loaded or unloaded.
std::uint64_t ModuleGeneration() noexcept;

/// Throws `std::bad_alloc`. Not to be called under a lock that somebody might want inside a callback of the
/// dynamic linker.
LoadedModules ListModules();

} // namespace vansys::detail
