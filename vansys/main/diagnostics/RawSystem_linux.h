/// @file
/// Calls of the kernel without the C library, for code that runs while other threads stand still in the
/// middle of anything, or in a process that has crashed: no lock, no `malloc`, no `errno`, no lazily bound
/// function, nothing that a sanitizer puts in between. Linux on x86-64 only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <type_traits>

namespace vansys::detail
{

/// An argument of a system call, or its result: at least 0, or an error number with a minus.
using RawWord = long;

template <class T>
RawWord ToRawWord(T value) noexcept
{
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<RawWord>(value);
    else if constexpr (std::is_null_pointer_v<T>)
        return 0;
    else
        return static_cast<RawWord>(value);
}

inline RawWord RawCallWords(RawWord number, RawWord a, RawWord b, RawWord c, RawWord d, RawWord e,
                            RawWord f) noexcept
{
    register RawWord r10 asm("r10") = d;
    register RawWord r8 asm("r8") = e;
    register RawWord r9 asm("r9") = f;
    RawWord result = number;
    asm volatile("syscall"
                 : "+a"(result)
                 : "D"(a), "S"(b), "d"(c), "r"(r10), "r"(r8), "r"(r9)
                 : "rcx", "r11", "memory");
    return result;
}

/// `RawCall(SYS_read, file, buffer, size)`.
template <class A = int, class B = int, class C = int, class D = int, class E = int, class F = int>
RawWord RawCall(RawWord number, A a = {}, B b = {}, C c = {}, D d = {}, E e = {}, F f = {}) noexcept
{
    return RawCallWords(number, ToRawWord(a), ToRawWord(b), ToRawWord(c), ToRawWord(d), ToRawWord(e),
                        ToRawWord(f));
}

/// A file descriptor that is closed in the end.
class RawFile
{
public:
    explicit RawFile(RawWord openResult = -1) noexcept : m_file(openResult) {}
    RawFile(RawFile const &) = delete;
    RawFile &operator=(RawFile const &) = delete;
    ~RawFile() { Close(); }

    void Open(RawWord openResult) noexcept
    {
        Close();
        m_file = openResult;
    }

    explicit operator bool() const noexcept { return m_file >= 0; }

    /// The descriptor, or what opening has failed with.
    RawWord Get() const noexcept { return m_file; }

private:
    void Close() noexcept
    {
        if (m_file >= 0)
            RawCall(SYS_close, m_file);
    }

    RawWord m_file;
};

/// Fresh pages from the kernel, all zero, for reading and writing. Empty where it has none left.
class RawPages
{
public:
    explicit RawPages(std::size_t size = 0) noexcept { Grow(size); }
    RawPages(RawPages const &) = delete;
    RawPages &operator=(RawPages const &) = delete;

    ~RawPages()
    {
        if (m_data)
            RawCall(SYS_munmap, m_data, m_size);
    }

    /// Makes it larger; its contents stay, at another address. Returns false, and changes nothing, on
    /// failure.
    bool Grow(std::size_t size) noexcept
    {
        if (size <= m_size)
            return true;
        RawWord const address = m_data ? RawCall(SYS_mremap, m_data, m_size, size, MREMAP_MAYMOVE)
                                       : RawCall(SYS_mmap, nullptr, size, PROT_READ | PROT_WRITE,
                                                 MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (address < 0)
            return false;
        std::memcpy(&m_data, &address, sizeof m_data);
        m_size = size;
        return true;
    }

    explicit operator bool() const noexcept { return m_data != nullptr; }
    std::byte *Data() const noexcept { return m_data; }
    std::size_t Size() const noexcept { return m_size; }

private:
    std::byte *m_data = nullptr;
    std::size_t m_size = 0;
};

/// An array that grows, in pages of its own. Its elements need no constructor: all bits zero will do.
template <class T>
class RawArray
{
    static_assert(std::is_trivially_copyable_v<T>, "elements move with their pages");

public:
    /// Returns false, and changes nothing, where there is no memory left.
    bool Append(T const &element) noexcept
    {
        if (!Reserve(m_size + 1))
            return false;
        begin()[m_size++] = element;
        return true;
    }

    /// Room for that many elements. Takes at least a page more than before, and twice as much.
    bool Reserve(std::size_t count) noexcept
    {
        std::size_t const least = count * sizeof(T);
        if (least <= m_pages.Size())
            return true;
        std::size_t size = m_pages.Size() ? 2 * m_pages.Size() : 4096;
        while (size < least)
            size *= 2;
        return m_pages.Grow(size);
    }

    /// Within what is reserved.
    void Resize(std::size_t count) noexcept { m_size = count; }

    std::size_t Size() const noexcept { return m_size; }
    std::size_t Capacity() const noexcept { return m_pages.Size() / sizeof(T); }
    T *begin() const noexcept { return reinterpret_cast<T *>(m_pages.Data()); }
    T *end() const noexcept { return begin() + m_size; }
    T &operator[](std::size_t index) const noexcept { return begin()[index]; }

private:
    RawPages m_pages;
    std::size_t m_size = 0;
};

/// Blocks every signal of the calling thread as long as it lives.
class BlockedSignals
{
public:
    BlockedSignals() noexcept
    {
        std::uint64_t const all = ~std::uint64_t{};
        RawCall(SYS_rt_sigprocmask, 0 /* SIG_BLOCK */, &all, &m_before, sizeof all);
    }

    BlockedSignals(BlockedSignals const &) = delete;
    BlockedSignals &operator=(BlockedSignals const &) = delete;
    ~BlockedSignals()
    {
        RawCall(SYS_rt_sigprocmask, 2 /* SIG_SETMASK */, &m_before, nullptr, sizeof m_before);
    }

private:
    std::uint64_t m_before = 0;
};

inline std::int64_t RawMilliseconds() noexcept
{
    timespec now{};
    RawCall(SYS_clock_gettime, CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

inline void RawSleepMicroseconds(long microseconds) noexcept
{
    timespec const time{microseconds / 1'000'000, microseconds % 1'000'000 * 1000};
    RawCall(SYS_nanosleep, &time, nullptr);
}

/// Reads all of a file whose size nobody knows before, as those below /proc.
template <class T>
bool RawReadFile(char const *name, RawArray<T> &contents) noexcept
{
    static_assert(sizeof(T) == 1);
    RawFile const file(RawCall(SYS_openat, -100 /* AT_FDCWD */, name, 02000000 /* O_CLOEXEC */, 0));
    if (!file)
        return false;
    contents.Resize(0);
    for (;;)
    {
        // A line of /proc/PID/maps is given out as a whole or not at all, and may be as long as a page.
        if (!contents.Reserve(contents.Size() + 8192))
            return false;
        RawWord const count =
            RawCall(SYS_read, file.Get(), contents.end(), contents.Capacity() - contents.Size());
        if (count <= 0)
            return count == 0;
        contents.Resize(contents.Size() + static_cast<std::size_t>(count));
    }
}

/// A name below /proc: `ProcName("/proc/", 12, "/task/", 34, "/status")`.
class ProcName
{
public:
    template <class... Parts>
    explicit ProcName(Parts... parts) noexcept
    {
        (Add(parts), ...);
    }

    char const *Get() const noexcept { return m_text; }

private:
    void Add(char const *text) noexcept
    {
        while (*text && m_length + 1 < sizeof m_text)
            m_text[m_length++] = *text++;
    }

    void Add(int number) noexcept
    {
        char digits[12] = {};
        char *digit = digits + sizeof digits - 1;
        do
            *--digit = static_cast<char>('0' + number % 10);
        while (number /= 10);
        Add(digit);
    }

    char m_text[80] = {};
    std::size_t m_length = 0;
};

} // namespace vansys::detail
