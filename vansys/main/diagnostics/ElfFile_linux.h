/// @file
/// ElfFile: what has to be known of an ELF file before others read it.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include <link.h>

namespace vansys::detail
{

/// FNV-1a over all that is added.
class Fingerprint
{
public:
    void Add(void const *bytes, std::size_t count) noexcept
    {
        for (auto const *at = static_cast<unsigned char const *>(bytes); count > 0; ++at, --count)
            m_value = (m_value ^ *at) * 0x100000001B3;
    }

    std::uint64_t Value() const noexcept { return m_value; }

private:
    std::uint64_t m_value = 0xCBF29CE484222325;
};

/// Whether all of a part is among what is loaded.
inline bool IsLoaded(ElfW(Phdr) const &part, std::span<ElfW(Phdr) const> headers) noexcept
{
    return std::any_of(headers.begin(), headers.end(),
                       [&part](ElfW(Phdr) const &header)
                       {
                           return header.p_type == PT_LOAD && header.p_offset <= part.p_offset &&
                                  part.p_filesz <= header.p_filesz &&
                                  part.p_offset - header.p_offset <= header.p_filesz - part.p_filesz;
                       });
}

/// Of the program headers of a module and of its notes, of which the build id is one: the same for what is
/// loaded and for the file that it was loaded from, and another one for another build.
///
/// `add` adds a part of the module to the fingerprint, and returns whether it could.
template <class Add>
std::uint64_t FingerprintOf(std::span<ElfW(Phdr) const> headers, Add add)
{
    Fingerprint fingerprint;
    fingerprint.Add(headers.data(), headers.size_bytes());
    for (ElfW(Phdr) const &header : headers)
        if (header.p_type == PT_NOTE && IsLoaded(header, headers) && !add(fingerprint, header))
            return 0;
    return fingerprint.Value();
}

/// That of a module that is loaded with this bias.
inline std::uint64_t FingerprintOfLoaded(std::span<ElfW(Phdr) const> headers, std::uintptr_t bias) noexcept
{
    return FingerprintOf(headers,
                         [bias](Fingerprint &fingerprint, ElfW(Phdr) const &part)
                         {
                             fingerprint.Add(std::bit_cast<void const *>(bias + part.p_vaddr), part.p_filesz);
                             return true;
                         });
}

/// That of the file behind the descriptor; 0 when it is no ELF file.
std::uint64_t FingerprintOfFile(int descriptor) noexcept;

/// Whether the sections of the file behind the descriptor lie within the file, and refer to one another as
/// they should. libbacktrace takes that for granted.
bool HasSoundSections(int descriptor) noexcept;

} // namespace vansys::detail
