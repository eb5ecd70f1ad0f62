#include "main/diagnostics/DebugFile_linux.h"

#include "main/diagnostics/ElfFile_linux.h"
#include "main/platform/Handle.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include <backtrace.h>
#include <fcntl.h>
#include <link.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

/// The one that is at work.
DebugFile *g_current = nullptr;

struct Search
{
    DebugFile::Record record;
    char const *symbol = nullptr; ///< of the symbol table
    bool isOutOfResources = false;
};

/// Called for each function that was inlined at the address, the innermost first, and at last for the one
/// that is in the symbol table.
int TakeLine(void *argument, std::uintptr_t, char const *file, int line, char const *function)
{
    DebugFile::Record &record = static_cast<Search *>(argument)->record;
    if (file && !record.file)
    {
        record.file = file;
        record.line = static_cast<unsigned>(std::max(line, 0));
    }
    if (function)
        record.function = function;
    return 0;
}

void TakeSymbol(void *argument, std::uintptr_t, char const *symbol, std::uintptr_t, std::uintptr_t)
{
    static_cast<Search *>(argument)->symbol = symbol;
}

void TakeError(void *argument, char const *, int error)
{
    // Numbers that are not positive mean that nothing is there, or that it is damaged.
    Search &search = *static_cast<Search *>(argument);
    search.isOutOfResources =
        search.isOutOfResources || error == ENOMEM || error == EMFILE || error == ENFILE;
}

std::uint64_t WholePages(std::uint64_t size) noexcept
{
    static auto const s_page = static_cast<std::uint64_t>(getpagesize());
    return (size + s_page - 1) / s_page * s_page;
}

bool IsDecorated(char const *name) noexcept
{
    return name && std::string_view(name).starts_with("_Z");
}

} // namespace

DebugFile::~DebugFile()
{
    Forget();
}

void DebugFile::Forget() noexcept
{
    for (Mapping const &mapping : m_mappings)
        munmap(std::bit_cast<void *>(mapping.begin), mapping.end - mapping.begin);
    m_mappings.Resize(0);
    m_state = nullptr;
}

bool DebugFile::LookUp(ModuleFile const &module, std::uintptr_t address, Record &record) noexcept
{
    if (module.path[0] == '\0')
        return true;
    Search search;
    g_current = this;
    m_module = &module;
    // By this name the program's file is found even when it has been removed.
    m_path = module.isProgram ? "/proc/self/exe" : module.path;
    if (!m_state)
        m_state = backtrace_create_state(m_path, 0, &TakeError, &search);
    if (m_state)
    {
        std::uintptr_t const inFile = address - module.bias;
        backtrace_pcinfo(m_state, inFile, &TakeLine, &TakeError, &search);
        backtrace_syminfo(m_state, inFile, &TakeSymbol, &TakeError, &search);
    }
    m_module = nullptr;
    g_current = nullptr;
    if (search.isOutOfResources)
    {
        // What could not be read now would count as missing for ever.
        Forget();
        return false;
    }
    record = search.record;
    // What is not decorated in the debugging information may be so in the symbol table.
    if (!record.function || (!IsDecorated(record.function) && IsDecorated(search.symbol)))
        record.function = search.symbol;
    return true;
}

int DebugFile::Open(char const *path, int flags) noexcept
{
    // In place of a file that is not there, libbacktrace looks into that of the program.
    bool const isModule = std::strcmp(path, m_path) == 0;
    if (!isModule && std::string_view(path).starts_with("/proc/"))
    {
        errno = ENOENT;
        return -1;
    }
    Handle file(open(path, flags | O_CLOEXEC));
    if (!file)
        return -1;
    struct stat status;
    errno = 0;
    if (fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode) || !HasSoundSections(file.Get()) ||
        (isModule && FingerprintOfFile(file.Get()) != m_module->fingerprint))
    {
        errno = errno == ENOMEM ? ENOMEM : ENOENT;
        return -1;
    }
    return file.Release();
}

void *DebugFile::Map(void *address, std::size_t size, int protection, int flags, int descriptor,
                     std::int64_t offset) noexcept
{
    if (descriptor >= 0)
    {
        // Where a damaged file says that there is more than it has, reading that would end the process.
        struct stat status;
        if (fstat(descriptor, &status) != 0 || offset < 0 || offset > status.st_size ||
            size > WholePages(static_cast<std::uint64_t>(status.st_size - offset)))
        {
            errno = EINVAL;
            return MAP_FAILED;
        }
    }
    if (!m_mappings.Reserve(m_mappings.Size() + 1))
    {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    void *const memory = mmap(address, size, protection, flags, descriptor, offset);
    if (memory != MAP_FAILED)
    {
        auto const begin = reinterpret_cast<std::uintptr_t>(memory);
        m_mappings.Append({begin, begin + WholePages(size)});
    }
    return memory;
}

int DebugFile::Unmap(void *address, std::size_t size) noexcept
{
    auto const begin = reinterpret_cast<std::uintptr_t>(address);
    std::uintptr_t const end = begin + size;
    auto const mapping =
        std::find_if(m_mappings.begin(), m_mappings.end(),
                     [begin, end](Mapping const &each) { return each.begin <= begin && end <= each.end; });
    // A hole would make two mappings of one. Libbacktrace keeps for later use what is not taken back.
    if (mapping == m_mappings.end() || (mapping->begin != begin && mapping->end != end) ||
        munmap(address, size) != 0)
    {
        return -1;
    }
    if (mapping->begin != begin)
        mapping->end = begin;
    else
        mapping->begin = end;
    if (mapping->begin >= mapping->end)
    {
        *mapping = *(m_mappings.end() - 1);
        m_mappings.Resize(m_mappings.Size() - 1);
    }
    return 0;
}

} // namespace vansys::detail

// In libbacktrace, the names of the system's functions are replaced with these.
extern "C"
{
    using ModuleCallback = int (*)(dl_phdr_info *, std::size_t, void *);

    int vansys_backtrace_modules(ModuleCallback callback, void *argument)
    {
        // Of one module only, and as if it were loaded where its file says. The name of the program, an empty
        // one, stands for the file that was opened before.
        dl_phdr_info info{};
        info.dlpi_name = "";
        return callback(&info, sizeof info, argument);
    }

    int vansys_backtrace_open(char const *path, int flags)
    {
        return vansys::detail::g_current->Open(path, flags);
    }

    void *vansys_backtrace_map(void *address, std::size_t size, int protection, int flags, int descriptor,
                               off_t offset)
    {
        return vansys::detail::g_current->Map(address, size, protection, flags, descriptor, offset);
    }

    int vansys_backtrace_unmap(void *address, std::size_t size)
    {
        return vansys::detail::g_current->Unmap(address, size);
    }
}
