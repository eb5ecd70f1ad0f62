/// @file
/// DebugFile: the symbols and lines of one module.
#pragma once

#include "main/diagnostics/RawSystem_linux.h"

#include <cstddef>
#include <cstdint>

struct backtrace_state;

namespace vansys::detail
{

/// What has to be known of a module to read its file.
struct ModuleFile
{
    char const *path; ///< not null
    bool isProgram;
    std::uintptr_t bias;       ///< what is added to the addresses in the file
    std::uint64_t fingerprint; ///< of what is loaded
};

/// Reads the file of a module, and the file that holds its debugging information where that was stripped from
/// it:
/// `.gnu_debuglink` (of the right checksum only) and the folders of build ids are followed. One thread at a
/// time may use all objects of this class.
///
/// Addresses are those in the file, so that it does not matter where the module is loaded.
class DebugFile
{
public:
    /// What was found. The names point into the file, and live as long as it.
    struct Record
    {
        char const *function = nullptr; ///< as the symbol table has it, or null
        char const *file = nullptr;     ///< or null
        unsigned line = 0;
    };

    /// Nothing is read yet.
    DebugFile() noexcept = default;
    DebugFile(DebugFile const &) = delete;
    DebugFile &operator=(DebugFile const &) = delete;
    ~DebugFile();

    /// Looks up an address. Reads the file of the module when this is the first time. False when there was no
    /// memory or no file descriptor for it: what was read is given back, and the next call begins anew. A
    /// file that is not there, that is damaged, or that is not the one that was loaded, is not a failure:
    /// nothing is found in it.
    bool LookUp(ModuleFile const &module, std::uintptr_t address, Record &record) noexcept;

    // What libbacktrace calls instead of the system.
    int Open(char const *path, int flags) noexcept;
    void *Map(void *address, std::size_t size, int protection, int flags, int descriptor,
              std::int64_t offset) noexcept;
    int Unmap(void *address, std::size_t size) noexcept;

private:
    struct Mapping
    {
        std::uintptr_t begin;
        std::uintptr_t end;
    };

    void Forget() noexcept;

    backtrace_state *m_state = nullptr;
    RawArray<Mapping> m_mappings;
    ModuleFile const *m_module = nullptr; ///< during a look-up
    char const *m_path = nullptr;
    bool m_isUnreadable = false;
    bool m_isOutOfResources = false;
};

} // namespace vansys::detail
