#include "main/diagnostics/MinidumpFile_linux.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace vansys::detail
{

namespace
{

constexpr mode_t OwnerOnly = 0600; // memory may hold what is nobody else's business

} // namespace

MinidumpFile::~MinidumpFile()
{
    if (m_isNamed)
        RawCall(SYS_unlinkat, m_folder.Get(), m_temporary, 0);
}

bool MinidumpFile::Begin(char const *name) noexcept
{
    if (!name)
        return false;
    char const *const slash = std::strrchr(name, '/');
    m_name = slash ? slash + 1 : name;
    std::size_t const folderSize = static_cast<std::size_t>(m_name - name);
    if (!*m_name || folderSize >= sizeof m_folderName)
        return false;
    std::memcpy(m_folderName, folderSize ? name : ".", std::max<std::size_t>(folderSize, 1));
    m_folder.Open(RawCall(SYS_openat, AT_FDCWD, m_folderName, O_PATH | O_DIRECTORY | O_CLOEXEC, 0));
    if (!m_folder)
        return false;

    // A device or a pipe would be replaced by the file in the end.
    struct stat present;
    RawWord const found = RawCall(SYS_newfstatat, m_folder.Get(), m_name, &present, AT_SYMLINK_NOFOLLOW);
    if (found != -ENOENT && (found < 0 || !(S_ISREG(present.st_mode) || S_ISLNK(present.st_mode))))
        return false;

    // Of a file without a name nothing is left even where the process is killed.
    m_file.Open(RawCall(SYS_openat, m_folder.Get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, OwnerOnly));
    return m_file || MakeTemporary();
}

/// Gives the file a name that no other has; without a file so far, makes one.
bool MinidumpFile::MakeTemporary() noexcept
{
    ProcName const ownFile("/proc/self/fd/", static_cast<int>(m_file.Get()));
    for (int attempt = 0; attempt < 1000; ++attempt)
    {
        ProcName const name(".dump-", static_cast<int>(RawCall(SYS_gettid)), "-", attempt, ".tmp");
        std::strcpy(m_temporary, name.Get());
        RawWord result = 0;
        if (m_file)
        {
            result =
                RawCall(SYS_linkat, AT_FDCWD, ownFile.Get(), m_folder.Get(), m_temporary, AT_SYMLINK_FOLLOW);
        }
        else
        {
            result = RawCall(SYS_openat, m_folder.Get(), m_temporary, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC,
                             OwnerOnly);
            m_file.Open(result);
        }
        m_isNamed = result >= 0;
        if (result != -EEXIST)
            return m_isNamed;
    }
    return false;
}

std::uint32_t MinidumpFile::Append(void const *data, std::size_t size) noexcept
{
    constexpr std::byte zeros[8]{};
    AppendTight(zeros, (~m_size + 1) % sizeof zeros);
    return AppendTight(data, size);
}

std::uint32_t MinidumpFile::AppendTight(void const *data, std::size_t size) noexcept
{
    std::uint32_t const offset = m_size;
    if (size > UINT32_MAX - m_size)
    {
        m_failed = true;
        return offset;
    }
    m_size += static_cast<std::uint32_t>(size);
    auto source = static_cast<std::byte const *>(data);
    while (size)
    {
        std::size_t const part = std::min(size, sizeof m_buffer - m_buffered);
        std::memcpy(m_buffer + m_buffered, source, part);
        m_buffered += static_cast<std::uint32_t>(part);
        source += part;
        size -= part;
        if (m_buffered == sizeof m_buffer)
            Flush();
    }
    return offset;
}

void MinidumpFile::Flush() noexcept
{
    Write(m_buffer, std::exchange(m_buffered, 0));
}

void MinidumpFile::Write(void const *data, std::size_t size) noexcept
{
    auto source = static_cast<std::byte const *>(data);
    while (size && !m_failed)
    {
        RawWord const count = RawCall(SYS_write, m_file.Get(), source, size);
        if (count == -EINTR)
            continue;
        // Nothing written and no error is what a full disk may look like.
        m_failed = count <= 0;
        source += std::max<RawWord>(count, 0);
        size -= static_cast<std::size_t>(std::max<RawWord>(count, 0));
    }
}

bool MinidumpFile::Finish(void const *header, std::size_t headerSize) noexcept
{
    Flush();
    m_failed |= RawCall(SYS_lseek, m_file.Get(), 0, SEEK_SET) != 0;
    Write(header, headerSize);
    return !m_failed;
}

bool MinidumpFile::Commit() noexcept
{
    if (m_failed || !(m_isNamed || MakeTemporary()))
        return false;
    if (RawCall(SYS_renameat, m_folder.Get(), m_temporary, m_folder.Get(), m_name) < 0)
        return false;
    m_isNamed = false;
    return true;
}

} // namespace vansys::detail
