#include "main/diagnostics/SymbolMaps_win.h"

#include "main/diagnostics/SymbolMap.h"
#include "main/platform/Handle.h"
#include "main/platform/Windows.h"

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vansys::detail
{
namespace
{

struct Unmap
{
    void operator()(void const *view) const noexcept { UnmapViewOfFile(view); }
};

/// The bytes of a file. A map lies beside its module, which the system reads the same way: what takes the one
/// away takes away the other.
struct MappedFile
{
    std::unique_ptr<void const, Unmap> view;
    std::size_t size = 0;

    std::string_view Bytes() const noexcept { return {static_cast<char const *>(view.get()), size}; }
};

/// What is known of a module's map. Without one, the map is empty.
struct ModuleMap
{
    std::uintptr_t module = 0;
    ModuleIdentity identity;
    MappedFile file;
    SymbolMap map;
};

enum class Outcome
{
    Mapped,
    Absent,
    Unreadable,
    Busy, ///< there is no memory or no handle now
};

Outcome MapFile(std::wstring const &path, MappedFile &mapped) noexcept
{
    Handle const file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
    {
        switch (GetLastError())
        {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return Outcome::Absent;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            return Outcome::Unreadable;
        default:
            return Outcome::Busy;
        }
    }
    LARGE_INTEGER size;
    if (!GetFileSizeEx(file.Get(), &size))
        return Outcome::Unreadable;
    // Of a file that is empty or too long, which is a fault, no more has to be known.
    if (size.QuadPart == 0 || size.QuadPart > std::numeric_limits<LONG>::max())
        return Outcome::Mapped;
    Handle const section(CreateFileMappingW(file.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (!section)
        return Outcome::Busy;
    mapped.view.reset(MapViewOfFile(section.Get(), FILE_MAP_READ, 0, 0, 0));
    if (!mapped.view)
        return Outcome::Busy;
    mapped.size = static_cast<std::size_t>(size.QuadPart);
    return Outcome::Mapped;
}

/// A module as it is in memory.
std::string_view ImageOf(HMODULE module) noexcept
{
    auto const *const begin = reinterpret_cast<char const *>(module);
    auto const *const dosHeader = reinterpret_cast<IMAGE_DOS_HEADER const *>(begin);
    auto const *const headers = reinterpret_cast<IMAGE_NT_HEADERS const *>(begin + dosHeader->e_lfanew);
    return {begin, headers->OptionalHeader.SizeOfImage};
}

/// The path of the module's map; empty when the module is gone.
std::wstring MapPath(HMODULE module)
{
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = 0;
    while ((length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()))) == path.size())
        path.resize(2 * path.size());
    path.resize(length);
    if (path.empty())
        return path;
    std::size_t const suffix = path.find_last_of(L".\\/");
    if (suffix != std::wstring::npos && path[suffix] == L'.')
        path.resize(suffix);
    return path + L".vsym";
}

std::string Notice(std::wstring const &path, std::string_view reason)
{
    std::wstring const name = path.substr(path.find_last_of(L"\\/") + 1);
    auto const convert = [&name](char *out, int capacity)
    {
        return WideCharToMultiByte(CP_UTF8, 0, name.data(), static_cast<int>(name.size()), out, capacity,
                                   nullptr, nullptr);
    };
    std::string narrow(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(narrow.data(), static_cast<int>(narrow.size()));
    return "(symbol map " + narrow + " ignored: " + std::string(reason) + ")";
}

std::string_view ReasonOf(SymbolMap::Fault fault) noexcept
{
    switch (fault)
    {
    case SymbolMap::Fault::None:
        break;
    case SymbolMap::Fault::Damaged:
        return "it is damaged";
    case SymbolMap::Fault::OtherVersion:
        return "it is of another version";
    case SymbolMap::Fault::OtherModule:
        return "it belongs to another module";
    }
    return {};
}

/// Opens the map of the module. None when that has to be tried again another time.
std::optional<ModuleMap> OpenMap(HMODULE module, ModuleIdentity const &identity, std::string &notice)
{
    ModuleMap opened{reinterpret_cast<std::uintptr_t>(module), identity, {}, {}};
    std::wstring const path = MapPath(module);
    std::string_view reason;
    switch (path.empty() ? Outcome::Absent : MapFile(path, opened.file))
    {
    case Outcome::Mapped:
        reason = ReasonOf(opened.map.Open(opened.file.Bytes(), identity));
        break;
    case Outcome::Unreadable:
        reason = "it cannot be read";
        break;
    case Outcome::Absent:
        break;
    case Outcome::Busy:
        return std::nullopt;
    }
    if (!reason.empty())
    {
        opened.file = {};
        notice = Notice(path, reason);
    }
    return opened;
}

/// The map of the module, opened now or before; null when that has to be tried again another time.
SymbolMap const *MapOf(HMODULE module, ModuleIdentity const &identity, std::string &notice)
{
    // Never destroyed: stacks may be walked at the very end of the process.
    static std::vector<ModuleMap> &maps = *new std::vector<ModuleMap>;
    for (ModuleMap const &known : maps)
    {
        if (known.module == reinterpret_cast<std::uintptr_t>(module) && known.identity == identity)
            return &known.map;
    }
    // Far more than there are modules: those of a host that loads ever new ones are forgotten.
    constexpr std::size_t MostMaps = 512;
    if (maps.size() == MostMaps)
        maps.clear();
    maps.reserve(maps.size() + 1); // so that a notice that is written is not written again
    std::optional<ModuleMap> opened = OpenMap(module, identity, notice);
    if (!opened)
        return nullptr;
    maps.push_back(std::move(*opened));
    return &maps.back().map;
}

} // namespace

bool LookUpInSymbolMap(std::uintptr_t address, Symbol &symbol)
{
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<wchar_t const *>(address), &module))
        return false;
    std::optional<ModuleIdentity> const identity = ReadModuleIdentity(ImageOf(module));
    if (!identity)
        return false;
    SymbolMap const *const map = MapOf(module, *identity, symbol.notice);
    if (map == nullptr)
        return false;
    SymbolMap::Place const place =
        map->Find(static_cast<std::uint32_t>(address - reinterpret_cast<std::uintptr_t>(module)));
    if (place.function.empty())
        return false;
    symbol.function = place.function;
    symbol.fullFunction = place.fullFunction;
    symbol.file = place.file;
    symbol.line = place.line;
    return true;
}

} // namespace vansys::detail
