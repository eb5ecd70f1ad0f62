#include "main/diagnostics/Symbols.h"

#include "main/diagnostics/DebugHelp_win.h"
#include "main/diagnostics/SymbolCache.h"
#include "main/diagnostics/SymbolMaps_win.h"

#include <array>
#include <new>

#include <shlobj.h>

namespace vansys::detail
{

namespace
{

/// The longest name, with the zero behind it.
constexpr DWORD MaxNameLength = 2048;

std::mutex g_debugHelp;
bool g_modulesLoaded = false;

/// The folder, with its separator, of the program; empty when that is unknown.
std::string FolderOfProgram()
{
    std::array<char, MAX_PATH> path{};
    DWORD const length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0 || length == path.size())
        return {};
    std::string folder(path.data(), length);
    folder.resize(folder.find_last_of("/\\:") + 1); // nothing is left where there is none
    return folder;
}

std::string CurrentFolder()
{
    std::array<char, MAX_PATH> path{};
    DWORD const length = GetCurrentDirectoryA(static_cast<DWORD>(path.size()), path.data());
    return length < path.size() ? std::string(path.data(), length) : std::string();
}

std::string SpecialFolder(int folder)
{
    std::array<char, MAX_PATH> path{};
    return SHGetSpecialFolderPathA(nullptr, path.data(), folder, TRUE) ? path.data() : std::string();
}

/// The folders, each with a `;` behind it.
std::string SymbolSearchPath(std::string const &own)
{
    std::string path;
    if (!own.empty())
        path = own + ';';
    path += ".;";
    path += CurrentFolder() + ';';
    path += FolderOfProgram() + ';';
    path += SpecialFolder(CSIDL_WINDOWS) + ';';
    path += SpecialFolder(CSIDL_SYSTEM) + ';';
    return path;
}

std::string Undecorated(char const *name, DWORD flags)
{
    std::array<char, MaxNameLength> undecorated{};
    DWORD const length = UnDecorateSymbolName(name, undecorated.data(), MaxNameLength, flags);
    return length > 0 ? undecorated.data() : name;
}

void LookUpFunction(Symbol &symbol, DWORD64 address)
{
    struct alignas(SYMBOL_INFO) Buffer
    {
        std::array<char, sizeof(SYMBOL_INFO) + MaxNameLength> bytes;
    } buffer{};
    auto *const info = new (buffer.bytes.data()) SYMBOL_INFO{};
    info->SizeOfStruct = sizeof *info;
    info->MaxNameLen = MaxNameLength;
    DWORD64 offset = 0;
    if (!SymFromAddr(GetCurrentProcess(), address, &offset, info))
        return;
    symbol.function = Undecorated(info->Name, UNDNAME_NAME_ONLY);
    symbol.fullFunction = Undecorated(info->Name, UNDNAME_COMPLETE);
}

void LookUpLine(Symbol &symbol, DWORD64 address)
{
    IMAGEHLP_LINE64 line{};
    line.SizeOfStruct = sizeof line;
    DWORD offset = 0;
    if (!SymGetLineFromAddr64(GetCurrentProcess(), address, &offset, &line) || !line.FileName)
        return;
    symbol.file = line.FileName;
    symbol.line = line.LineNumber;
}

void LookUpModule(Symbol &symbol, DWORD64 address)
{
    IMAGEHLP_MODULE64 module{};
    module.SizeOfStruct = sizeof module;
    if (!SymGetModuleInfo64(GetCurrentProcess(), address, &module))
        return;
    symbol.moduleBase = static_cast<std::uintptr_t>(module.BaseOfImage);
    symbol.module = module.ModuleName;
    symbol.imagePath = module.LoadedImageName;
}

} // namespace

std::unique_lock<std::mutex> LockDebugHelp()
{
    return std::unique_lock(g_debugHelp);
}

bool StartSymbolHandler(std::string const &searchPath)
{
    HANDLE const process = GetCurrentProcess();
    if (g_modulesLoaded)
    {
        SymRefreshModuleList(process);
        return true;
    }
    // Names come as they are in the symbol tables, so that both short and full ones can be had of them.
    SymSetOptions((SymGetOptions() & ~static_cast<DWORD>(SYMOPT_UNDNAME)) | SYMOPT_LOAD_LINES |
                  SYMOPT_DEFERRED_LOADS | SYMOPT_FAIL_CRITICAL_ERRORS);
    g_modulesLoaded = SymInitialize(process, SymbolSearchPath(searchPath).c_str(), TRUE) != FALSE;
    return g_modulesLoaded;
}

Symbol LookUpSymbol(std::uintptr_t address) noexcept
{
    Symbol symbol;
    try
    {
        std::unique_lock const lock = LockDebugHelp();
        if (!g_modulesLoaded && !StartSymbolHandler({}))
            return symbol;
        LookUpModule(symbol, address);
        // An address may be another module's by now.
        static SymbolCache &s_cache = *new SymbolCache; // stays: exit handlers may look up symbols, too
        Symbol const *const known = s_cache.Find(address);
        if (known && known->moduleBase == symbol.moduleBase && known->imagePath == symbol.imagePath)
            return *known;
        LookUpFunction(symbol, address);
        LookUpLine(symbol, address);
        // Of a module that is not described in the symbol handler's own format, it knows at most what is
        // exported.
        if (symbol.line == 0)
            LookUpInSymbolMap(address, symbol);
        if (known)
            s_cache.Clear();
        Symbol kept = symbol;
        kept.notice.clear(); // is given once
        s_cache.Insert(address, kept);
    }
    catch (std::bad_alloc const &)
    {
        // The caller does with what there is.
    }
    return symbol;
}

void LookUpSymbols(std::span<std::uintptr_t const> addresses,
                   std::function<void(std::size_t index, Symbol const &symbol)> const &take)
{
    for (std::size_t i = 0; i < addresses.size(); ++i)
        take(i, LookUpSymbol(addresses[i]));
}

} // namespace vansys::detail
