/// @file
/// Handle: the owner of what the operating system hands out and wants back.
#pragma once

#include <utility>

namespace vansys::detail
{

#if defined(_WIN32)
using NativeHandle = void *; ///< a `HANDLE`
inline constexpr NativeHandle NoHandle = nullptr;
#else
using NativeHandle = int; ///< a file descriptor
inline constexpr NativeHandle NoHandle = -1;
#endif

/// Owns one event, semaphore, process, thread, file or the like, and closes it in the end. Either it owns
/// something or it is empty.
///
/// What stands for "none" in the system's own functions makes an empty handle: on Windows null and
/// `INVALID_HANDLE_VALUE`, as some functions fail with the one and some with the other, on Linux all negative
/// numbers. So the result of a call is put into a handle first, and then looked at:
///
///     Handle const file(open(path, O_RDONLY | O_CLOEXEC));
///     if (!file)
///         return errno;
///
/// Pseudo handles, such as that of the current process, are not owned by anybody and have no place here.
class Handle
{
public:
    Handle() noexcept = default;
    explicit Handle(NativeHandle native) noexcept : m_native(IsNone(native) ? NoHandle : native) {}

    Handle(Handle &&other) noexcept : m_native(other.Release()) {}
    Handle &operator=(Handle &&other) noexcept
    {
        Handle(std::move(other)).Swap(*this);
        return *this;
    }

    ~Handle()
    {
        if (m_native != NoHandle)
            Close(m_native);
    }

    explicit operator bool() const noexcept { return m_native != NoHandle; }

    /// For calls of the system; `NoHandle` when empty. Still owned by this.
    NativeHandle Get() const noexcept { return m_native; }

    /// Hands over to the caller, and is empty.
    [[nodiscard]] NativeHandle Release() noexcept { return std::exchange(m_native, NoHandle); }

    void Swap(Handle &other) noexcept { std::swap(m_native, other.m_native); }

private:
    static bool IsNone(NativeHandle native) noexcept;

    /// Leaves alone the error code of the thread: handles are closed on the way out of a failure, too, before
    /// somebody has looked at it.
    static void Close(NativeHandle native) noexcept;

    NativeHandle m_native = NoHandle;
};

} // namespace vansys::detail
