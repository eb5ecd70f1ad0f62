#include "main/diagnostics/CrashSymbols_linux.h"

#include "main/diagnostics/CrashReport_linux.h"
#include "main/diagnostics/DebugFile_linux.h"
#include "main/diagnostics/ElfFile_linux.h"
#include "main/diagnostics/UndecoratedName.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>
#include <elf.h>
#include <link.h>
#include <new>
#include <span>
#include <sys/auxv.h>

/// In GCC's run-time library: gives out an undecorated name in pieces, and allocates nothing but stack.
/// Returns 0, or something else for what is no decorated name of a function or type.
extern "C" int vansys_demangle(char const *name, void (*take)(char const *, std::size_t, void *),
                               void *argument);

namespace vansys::detail
{

namespace
{

/// The demangler takes stack in proportion to the length of a name: longer ones stay decorated.
constexpr std::size_t LongestDecorated = 1024;

/// As `TStackWalker::STACKWALK_MAX_NAMELEN`, with a zero.
constexpr std::size_t LongestName = 2047;

constexpr std::uintptr_t PageSize = 4096;

/// Where names are made. There is one crash, and one thread that reports it.
struct
{
    char text[8 * LongestName];
    std::size_t size;
} g_name;

void TakePiece(char const *piece, std::size_t size, void *) noexcept
{
    std::size_t const count = std::min(size, sizeof(g_name.text) - g_name.size);
    std::copy_n(piece, count, g_name.text + g_name.size);
    g_name.size += count;
}

/// The name, undecorated. Stays until the next call.
std::string_view Undecorated(char const *symbol) noexcept
{
    g_name.size = 0;
    bool isDone = false;
    if (strnlen(symbol, LongestDecorated + 1) <= LongestDecorated)
        Guarded([&] { isDone = vansys_demangle(symbol, &TakePiece, nullptr) == 0; });
    return isDone ? std::string_view(g_name.text, g_name.size) : std::string_view(symbol);
}

/// What the module's headers, which are loaded with it, say of its file.
ModuleFile Describe(MappedModule const &module, char const *path, bool isProgram) noexcept
{
    auto const *const file = std::bit_cast<ElfW(Ehdr) const *>(module.base);
    std::span const headers(std::bit_cast<ElfW(Phdr) const *>(module.base + file->e_phoff), file->e_phnum);
    auto lowest = ~ElfW(Addr){0};
    for (ElfW(Phdr) const &header : headers)
        if (header.p_type == PT_LOAD)
            lowest = std::min(lowest, header.p_vaddr);
    std::uintptr_t const bias = module.base - lowest / PageSize * PageSize;
    return {path, isProgram, bias, FingerprintOfLoaded(headers, bias)};
}

} // namespace

bool CrashSymbols::Read() noexcept
{
    int const self = static_cast<int>(RawCall(SYS_getpid));
    if (!m_map.Read(self, self) || !m_map.FindModules(getauxval(AT_ENTRY), m_modules) ||
        !m_files.Reserve(m_modules.Size()))
        return false;
    m_files.Resize(m_modules.Size());
    return true;
}

void CrashSymbols::AppendFrame(CrashText &text, std::size_t number, Frame const &frame) const noexcept
{
    CrashFrameLine line;
    line.number = number;
    line.programCounter = frame.programCounter;
    std::uintptr_t const address = frame.Instruction();
    for (MappedModule const &module : m_modules)
        if (module.base <= address && address < module.base + module.size)
        {
            line.module = module.name.substr(module.name.rfind('/') + 1);
            Guarded([&] { LookUp(module, address, line); });
        }
    AppendCrashFrame(text, line);
}

void CrashSymbols::LookUp(MappedModule const &module, std::uintptr_t address,
                          CrashFrameLine &line) const noexcept
{
    char path[PATH_MAX];
    if (module.name.size() >= sizeof(path))
        return;
    *std::copy(module.name.begin(), module.name.end(), path) = '\0';

    DebugFile *&file = m_files[static_cast<std::size_t>(&module - m_modules.begin())];
    if (file == nullptr)
    {
        RawWord const page = RawCall(SYS_mmap, nullptr, sizeof(DebugFile), PROT_READ | PROT_WRITE,
                                     MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (page < 0)
            return;
        file = new (std::bit_cast<void *>(page)) DebugFile;
    }

    ModuleFile const described = Describe(module, path, &module == m_modules.begin());
    DebugFile::Record record;
    if (!file->LookUp(described, address, record))
        return;
    if (record.file != nullptr)
    {
        line.file = record.file;
        line.line = record.line;
    }
    if (record.function != nullptr)
    {
        // The demangler takes the name of a function of C for that of a type.
        std::string_view const name = record.function;
        line.function = name.starts_with("_Z") ? NameOnly(Undecorated(record.function)) : name;
        line.function = line.function.substr(0, LongestName);
    }
}

void CrashSymbols::AppendModules(CrashText &text) const noexcept
{
    text += "modules:\n";
    for (MappedModule const &module : m_modules)
    {
        (text += "0x").Hex(module.base) += " 0x";
        (text.Hex(module.base + module.size) += ' ') += module.name;
        text += '\n';
    }
}

void AppendTypeName(CrashText &text, char const *symbol) noexcept
{
    text += Undecorated(symbol).substr(0, LongestName);
}

} // namespace vansys::detail
