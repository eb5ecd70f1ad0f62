#include "main/diagnostics/ElfFile_linux.h"

#include <array>
#include <cstring>
#include <string_view>

#include <elf.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

using namespace std::string_view_literals;

using FileHeader = ElfW(Ehdr);
using ProgramHeader = ElfW(Phdr);
using SectionHeader = ElfW(Shdr);

bool Read(int descriptor, void *buffer, std::size_t size, std::uint64_t offset) noexcept
{
    return pread(descriptor, buffer, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

bool ReadFileHeader(int descriptor, FileHeader &file) noexcept
{
    return Read(descriptor, &file, sizeof file, 0) && std::memcmp(file.e_ident, ELFMAG, SELFMAG) == 0;
}

/// The bytes of a file.
class FileBytes
{
public:
    explicit FileBytes(int descriptor) noexcept
    {
        struct stat status;
        if (fstat(descriptor, &status) != 0 || status.st_size <= 0)
            return;
        m_size = static_cast<std::size_t>(status.st_size);
        void *const memory = mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, descriptor, 0);
        if (memory != MAP_FAILED)
            m_bytes = static_cast<char const *>(memory);
        else
            m_size = 0;
    }
    ~FileBytes()
    {
        if (m_bytes)
            munmap(const_cast<char *>(m_bytes), m_size);
    }
    FileBytes(FileBytes const &) = delete;
    FileBytes &operator=(FileBytes const &) = delete;

    /// What there is of this part.
    std::string_view Part(std::uint64_t offset, std::uint64_t size) const noexcept
    {
        return offset > m_size ? std::string_view() : std::string_view(m_bytes, m_size).substr(offset, size);
    }

private:
    char const *m_bytes = nullptr;
    std::size_t m_size = 0;
};

/// Reads numbers one after the other. Past the end, they are 0.
class Reader
{
public:
    explicit Reader(std::string_view bytes) noexcept : m_rest(bytes) {}

    bool IsAtEnd() const noexcept { return m_rest.empty(); }

    template <class Number>
    Number Read() noexcept
    {
        Number number{};
        if (m_rest.size() >= sizeof number)
            std::memcpy(&number, m_rest.data(), sizeof number);
        Skip(sizeof number);
        return number;
    }

    void Skip(std::uint64_t count) noexcept
    {
        m_rest.remove_prefix(std::min<std::uint64_t>(count, m_rest.size()));
    }

private:
    std::string_view m_rest;
};

/// Looks at the header of each table of lines: the two divisors in it must not be 0.
bool AreSoundLineTables(std::string_view section) noexcept
{
    constexpr std::uint32_t Is64Bit = 0xFFFFFFFF;
    for (Reader tables(section); !tables.IsAtEnd();)
    {
        std::uint64_t size = tables.Read<std::uint32_t>();
        bool const isWide = size == Is64Bit;
        if (isWide)
            size = tables.Read<std::uint64_t>();
        Reader table = tables;
        tables.Skip(size);
        auto const version = table.Read<std::uint16_t>();
        table.Skip(version >= 5 ? 2 : 0);                    // sizes of addresses and segments
        table.Skip(isWide ? 8 : 4);                          // the size of the header
        table.Skip(1);                                       // the unit of addresses
        if (version >= 4 && table.Read<std::uint8_t>() == 0) // operations per instruction
            return false;
        table.Skip(2);                       // the first kind, the base
        if (table.Read<std::uint8_t>() == 0) // the range
            return false;
    }
    return true;
}

} // namespace

std::uint64_t FingerprintOfFile(int descriptor) noexcept
{
    auto const read = [descriptor](void *buffer, std::size_t size, std::uint64_t offset) noexcept
    { return Read(descriptor, buffer, size, offset); };
    FileHeader file;
    std::array<ProgramHeader, 64> headers;
    if (!ReadFileHeader(descriptor, file) || file.e_phentsize != sizeof(ProgramHeader) ||
        file.e_phnum > headers.size() ||
        !read(headers.data(), file.e_phnum * sizeof(ProgramHeader), file.e_phoff))
    {
        return 0;
    }
    return FingerprintOf(std::span(headers).first(file.e_phnum),
                         [&read](Fingerprint &fingerprint, ProgramHeader const &part)
                         {
                             std::array<unsigned char, 512> buffer;
                             for (std::uint64_t done = 0; done < part.p_filesz;)
                             {
                                 auto const size = static_cast<std::size_t>(
                                     std::min<std::uint64_t>(part.p_filesz - done, buffer.size()));
                                 if (!read(buffer.data(), size, part.p_offset + done))
                                     return false;
                                 fingerprint.Add(buffer.data(), size);
                                 done += size;
                             }
                             return true;
                         });
}

bool HasSoundSections(int descriptor) noexcept
{
    FileBytes const bytes(descriptor);
    FileHeader const file = Reader(bytes.Part(0, sizeof file)).Read<FileHeader>();
    if (std::memcmp(file.e_ident, ELFMAG, SELFMAG) != 0 || file.e_shentsize != sizeof(SectionHeader) ||
        file.e_shstrndx >= file.e_shnum)
    {
        return false;
    }
    auto const header = [&](std::size_t index) noexcept
    {
        return Reader(bytes.Part(file.e_shoff + index * sizeof(SectionHeader), sizeof(SectionHeader)))
            .Read<SectionHeader>();
    };
    auto const content = [&](SectionHeader const &section) noexcept
    {
        return section.sh_type == SHT_NOBITS ? std::string_view()
                                             : bytes.Part(section.sh_offset, section.sh_size);
    };

    std::string_view const names = content(header(file.e_shstrndx));
    if (!names.ends_with('\0'))
        return false;
    for (std::size_t i = 0; i < file.e_shnum; ++i)
    {
        SectionHeader const section = header(i);
        std::string_view const inFile = content(section);
        if (section.sh_name >= names.size() ||
            (section.sh_type != SHT_NOBITS && inFile.size() != section.sh_size))
            return false;
        if (section.sh_type == SHT_SYMTAB || section.sh_type == SHT_DYNSYM)
        {
            if (section.sh_entsize != sizeof(ElfW(Sym)) || section.sh_link >= file.e_shnum ||
                !content(header(section.sh_link)).ends_with('\0'))
            {
                return false;
            }
        }
        bool const isCompressed = section.sh_flags & SHF_COMPRESSED;
        if (names.substr(section.sh_name).starts_with(".debug_line\0"sv) && !isCompressed &&
            !AreSoundLineTables(inFile))
            return false;
    }
    return true;
}

} // namespace vansys::detail
