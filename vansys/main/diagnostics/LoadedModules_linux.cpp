#include "main/diagnostics/LoadedModules_linux.h"
#include "main/diagnostics/ElfFile_linux.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <new>
#include <span>
#include <string_view>

#include <link.h>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

using ProgramHeader = ElfW(Phdr);

std::uint64_t GenerationOf(dl_phdr_info const &info) noexcept
{
    return info.dlpi_adds + info.dlpi_subs;
}

std::string PathOfProgram()
{
    // Names a file that has been removed or replaced meanwhile as "/folder/name (deleted)".
    constexpr std::string_view Deleted = " (deleted)";
    std::string path(PATH_MAX, '\0');
    ssize_t const length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    if (path.size() > Deleted.size() &&
        std::string_view(path).substr(path.size() - Deleted.size()) == Deleted)
        path.resize(path.size() - Deleted.size());
    return path;
}

/// While the callback runs, nothing is unloaded.
LoadedModule DescribeModule(dl_phdr_info const &info)
{
    LoadedModule module;
    module.path = info.dlpi_name ? info.dlpi_name : "";
    module.isProgram = module.path.empty();
    module.bias = info.dlpi_addr;
    std::span const headers(info.dlpi_phdr, info.dlpi_phnum);
    for (ProgramHeader const &header : headers)
    {
        std::uintptr_t const begin = module.bias + header.p_vaddr;
        if (header.p_type == PT_LOAD)
            module.segments.emplace_back(begin, begin + header.p_memsz);
    }
    if (!module.segments.empty())
        module.base = std::min_element(module.segments.begin(), module.segments.end())->first;
    module.fingerprint = FingerprintOfLoaded(headers, module.bias);
    return module;
}

struct Listing
{
    LoadedModules result;
    bool isOutOfMemory = false;
};

int ListOne(dl_phdr_info *info, std::size_t, void *argument)
{
    Listing &listing = *static_cast<Listing *>(argument);
    try
    {
        listing.result.generation = GenerationOf(*info);
        listing.result.modules.push_back(DescribeModule(*info));
        return 0;
    }
    catch (std::bad_alloc const &) // must not pass through the dynamic linker
    {
        listing.isOutOfMemory = true;
        return 1;
    }
}

} // namespace

bool LoadedModule::Contains(std::uintptr_t address) const noexcept
{
    return std::any_of(segments.begin(), segments.end(),
                       [address](auto const &segment)
                       { return segment.first <= address && address < segment.second; });
}

std::uint64_t ModuleGeneration() noexcept
{
    std::uint64_t generation = 0;
    dl_iterate_phdr(
        [](dl_phdr_info *info, std::size_t, void *result)
        {
            *static_cast<std::uint64_t *>(result) = GenerationOf(*info);
            return 1;
        },
        &generation);
    return generation;
}

LoadedModules ListModules()
{
    Listing listing;
    dl_iterate_phdr(&ListOne, &listing);
    if (listing.isOutOfMemory)
        throw std::bad_alloc();
    for (LoadedModule &module : listing.result.modules)
        if (module.isProgram)
            module.path = PathOfProgram();
    return std::move(listing.result);
}

} // namespace vansys::detail
