#include "main/diagnostics/OwnMemory_linux.h"

#include <bit>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

/// For sandboxes that do not allow to read memory by a call. This one looks at the signal set before it finds
/// that there is no such operation on signal masks.
bool IsReadable(std::uintptr_t address) noexcept
{
    constexpr int NoOperation = ~0;
    constexpr std::size_t SizeOfKernelsSignalSet = 8;
    return syscall(SYS_rt_sigprocmask, NoOperation, address, nullptr, SizeOfKernelsSignalSet) != 0 &&
           errno == EINVAL;
}

/// Copies memory that other code uses without telling the sanitizers.
[[gnu::no_sanitize_address, gnu::no_sanitize_thread]] void CopyWords(std::uintptr_t from, unsigned char *to,
                                                                     std::size_t size) noexcept
{
    for (std::size_t offset = 0; offset < size; offset += sizeof(std::uintptr_t))
        *reinterpret_cast<std::uintptr_t *>(to + offset) =
            *std::bit_cast<std::uintptr_t const volatile *>(from + offset);
}

/// The memory lies in one page.
bool ReadWithinPage(std::uintptr_t address, unsigned char *to, std::size_t size) noexcept
{
    iovec const local{to, size};
    iovec const remote{std::bit_cast<void *>(address), size};
    // By its number: the sanitizers take the function for an access of theirs.
    long const read = syscall(SYS_process_vm_readv, getpid(), &local, 1, &remote, 1, 0);
    if (read >= 0 || errno == EFAULT)
        return read == static_cast<long>(size);
    if (!IsReadable(address))
        return false;
    CopyWords(address, to, size);
    return true;
}

} // namespace

bool OwnMemory::Read(std::uintptr_t address, std::uintptr_t &word) noexcept
{
    if (address % sizeof word != 0)
        return false;
    std::uintptr_t const windowBegin = address - address % WindowSize;
    if (windowBegin == 0)
        return false;
    if (windowBegin != m_windowBegin)
    {
        int const savedError = errno;
        bool const isRead = ReadWithinPage(windowBegin, m_window.data(), WindowSize);
        errno = savedError;
        m_windowBegin = isRead ? windowBegin : 0;
        if (!isRead)
            return false;
    }
    std::memcpy(&word, m_window.data() + (address - windowBegin), sizeof word);
    return true;
}

} // namespace vansys::detail
