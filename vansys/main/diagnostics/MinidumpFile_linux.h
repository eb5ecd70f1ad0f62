/// @file
/// A file that has its name when it is complete, and no sooner. Linux only; without `malloc` and locks.
#pragma once

#include "main/diagnostics/RawSystem_linux.h"

namespace vansys::detail
{

/// Is written from the beginning to the end through a buffer. All offsets are of 32 bits.
class MinidumpFile
{
public:
    MinidumpFile() noexcept = default;
    MinidumpFile(MinidumpFile const &) = delete;
    MinidumpFile &operator=(MinidumpFile const &) = delete;

    /// Without `Commit`, nothing is left of the file.
    ~MinidumpFile();

    /// Begins an empty file in the folder of the name. Returns false if there is no such folder, or no file
    /// can be made in it, or what has the name now is no file.
    bool Begin(char const *name) noexcept;

    /// Aligns the end to 8 bytes, appends there and returns the offset. Failures are kept for `Finish`.
    std::uint32_t Append(void const *data, std::size_t size) noexcept;

    /// The same without the alignment.
    std::uint32_t AppendTight(void const *data, std::size_t size) noexcept;

    std::uint32_t Size() const noexcept { return m_size; }

    /// Writes what is left in the buffer, and `header` over the beginning. Returns whether all of the file is
    /// written.
    bool Finish(void const *header, std::size_t headerSize) noexcept;

    /// Gives the file its name, in place of the file that had it.
    bool Commit() noexcept;

private:
    bool MakeTemporary() noexcept;
    void Write(void const *data, std::size_t size) noexcept;
    void Flush() noexcept;

    RawFile m_folder;
    RawFile m_file;
    bool m_isNamed = false; ///< `m_temporary` is there
    bool m_failed = false;
    std::uint32_t m_size = 0;
    std::uint32_t m_buffered = 0;
    char const *m_name = nullptr; ///< without the folder
    char m_temporary[40] = {};
    char m_folderName[4096] = {};
    std::byte m_buffer[65536];
};

} // namespace vansys::detail
