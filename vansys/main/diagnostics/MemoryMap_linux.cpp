#include "main/diagnostics/MemoryMap_linux.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <elf.h>
#include <sys/uio.h>

namespace vansys::detail
{

namespace
{

constexpr std::uint64_t LargestModule = std::uint64_t{1} << 32;

/// Takes a number off the front of the text, and the character behind it.
bool TakeNumber(std::string_view &text, std::uint64_t &number, int base, char end) noexcept
{
    auto const result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (result.ec != std::errc() || result.ptr == text.data() + text.size() || *result.ptr != end)
        return false;
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()) + 1);
    return true;
}

/// The build id among the notes, if it is there.
void FindBuildId(unsigned char const *notes, std::size_t size, MappedModule &module) noexcept
{
    auto const aligned = [](std::size_t length) { return (length + 3) & ~std::size_t{3}; };
    for (std::size_t offset = 0; size - offset >= sizeof(Elf64_Nhdr);)
    {
        Elf64_Nhdr note;
        std::memcpy(&note, notes + offset, sizeof note);
        offset += sizeof note;
        std::size_t const nameSize = aligned(note.n_namesz);
        std::size_t const valueSize = aligned(note.n_descsz);
        if (nameSize > size - offset || valueSize > size - offset - nameSize)
            return;
        if (note.n_type == NT_GNU_BUILD_ID && note.n_namesz == 4 && note.n_descsz <= sizeof module.buildId &&
            std::memcmp(notes + offset, "GNU", 4) == 0)
        {
            module.buildIdSize = note.n_descsz;
            std::memcpy(module.buildId, notes + offset + nameSize, note.n_descsz);
            return;
        }
        offset += nameSize + valueSize;
    }
}

} // namespace

bool ParseMapLine(std::string_view line, MappedRange &range) noexcept
{
    char const *const start = line.data();
    std::uint64_t ignored = 0;
    if (!TakeNumber(line, range.start, 16, '-') || !TakeNumber(line, range.end, 16, ' ') || line.size() < 5)
        return false;
    range.readable = line[0] == 'r';
    range.writable = line[1] == 'w';
    range.executable = line[2] == 'x';
    line.remove_prefix(5);
    if (!TakeNumber(line, range.offset, 16, ' ') || !TakeNumber(line, ignored, 16, ':') ||
        !TakeNumber(line, ignored, 16, ' ') || !TakeNumber(line, range.inode, 10, ' '))
        return false;
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    range.nameOffset = static_cast<std::uint32_t>(line.data() - start);
    range.nameSize = static_cast<std::uint32_t>(line.size());
    return range.start < range.end;
}

bool MemoryMap::Read(int process, int memoryOwner) noexcept
{
    m_memoryOwner = memoryOwner;
    return RawReadFile(ProcName("/proc/", process, "/maps").Get(), m_text) && Parse();
}

bool MemoryMap::Parse() noexcept
{
    std::string_view const text(m_text.begin(), m_text.Size());
    for (std::size_t lineStart = 0; lineStart < text.size();)
    {
        std::size_t const lineEnd = std::min(text.find('\n', lineStart), text.size());
        MappedRange range{};
        if (ParseMapLine(text.substr(lineStart, lineEnd - lineStart), range))
        {
            range.nameOffset += static_cast<std::uint32_t>(lineStart);
            if (!m_ranges.Append(range))
                return false;
        }
        lineStart = lineEnd + 1;
    }
    return m_ranges.Size() != 0;
}

MappedRange const *MemoryMap::FindFrom(std::uint64_t address) const noexcept
{
    MappedRange const *const found =
        std::upper_bound(m_ranges.begin(), m_ranges.end(), address,
                         [](std::uint64_t value, MappedRange const &range) { return value < range.end; });
    return found == m_ranges.end() ? nullptr : found;
}

MappedRange const *MemoryMap::Find(std::uint64_t address) const noexcept
{
    MappedRange const *const found = FindFrom(address);
    return found && found->start <= address ? found : nullptr;
}

std::size_t MemoryMap::ReadMemory(std::uint64_t address, void *target, std::size_t size) const noexcept
{
    iovec const local{target, size};
    iovec remote{};
    std::memcpy(&remote.iov_base, &address, sizeof address);
    remote.iov_len = size;
    RawWord const count = RawCall(SYS_process_vm_readv, m_memoryOwner, &local, 1, &remote, 1, 0);
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

/// Looks at the headers that are at the beginning of the file and so of the range. What they say is not
/// trusted: this is memory of a process that may have overwritten it.
bool MemoryMap::ReadModule(MappedRange const &range, MappedModule &module) const noexcept
{
    Elf64_Ehdr header;
    if (ReadMemory(range.start, &header, sizeof header) != sizeof header ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64 ||
        header.e_phentsize != sizeof(Elf64_Phdr))
        return false;
    Elf64_Phdr segments[32];
    std::size_t const count = std::min<std::size_t>(header.e_phnum, std::size(segments));
    if (ReadMemory(range.start + header.e_phoff, segments, count * sizeof(Elf64_Phdr)) !=
        count * sizeof(Elf64_Phdr))
        return false;

    std::uint64_t lowest = UINT64_MAX;
    std::uint64_t highest = 0;
    for (std::size_t i = 0; i < count; ++i)
        if (segments[i].p_type == PT_LOAD)
        {
            lowest = std::min(lowest, segments[i].p_vaddr & ~std::uint64_t{4095});
            highest = std::max(highest, segments[i].p_vaddr + segments[i].p_memsz);
        }
    if (lowest >= highest || highest - lowest >= LargestModule)
        return false;

    module.base = range.start;
    module.size = (highest - lowest + 4095) & ~std::uint64_t{4095};
    module.name = std::string_view(m_text.begin() + range.nameOffset, range.nameSize);
    // Something has been loaded since, which the kernel tells by this; the name is what was loaded then.
    constexpr std::string_view replaced = " (deleted)";
    if (module.name.size() > replaced.size() &&
        module.name.substr(module.name.size() - replaced.size()) == replaced)
        module.name.remove_suffix(replaced.size());
    module.buildIdSize = 0;
    for (std::size_t i = 0; i < count && module.buildIdSize == 0; ++i)
        if (segments[i].p_type == PT_NOTE)
        {
            unsigned char notes[1024];
            std::size_t const wanted = std::min<std::size_t>(segments[i].p_memsz, sizeof notes);
            FindBuildId(notes, ReadMemory(range.start + (segments[i].p_vaddr - lowest), notes, wanted),
                        module);
        }
    return true;
}

bool MemoryMap::FindModules(std::uint64_t entryPoint, RawArray<MappedModule> &modules) const noexcept
{
    std::uint64_t end = 0;
    for (MappedRange const &first : m_ranges)
    {
        // The kernel's own library is not from a file, but a module, too.
        bool const isKernels =
            std::string_view(m_text.begin() + first.nameOffset, first.nameSize) == "[vdso]";
        MappedModule module{};
        // The second segment of a small library may begin with the file's first page once more.
        if (first.start < end || first.offset != 0 || !first.readable || (first.inode == 0 && !isKernels) ||
            !ReadModule(first, module))
            continue;
        // Files that are read and not run are mapped, too.
        bool const isRun = std::any_of(&first, static_cast<MappedRange const *>(m_ranges.end()),
                                       [&](MappedRange const &range) {
                                           return range.start < module.base + module.size &&
                                                  range.executable && range.inode == first.inode;
                                       });
        if (!isRun)
            continue;
        if (!modules.Append(module))
            return false;
        end = module.base + module.size;
        if (module.base <= entryPoint && entryPoint < end)
            std::rotate(modules.begin(), modules.end() - 1, modules.end());
    }
    return true;
}

} // namespace vansys::detail
