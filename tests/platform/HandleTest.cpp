#include "main/platform/Handle.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#if defined(_WIN32)
#    include "main/platform/Windows.h"

#    include <string>
#else
#    include <cerrno>
#    include <fcntl.h>
#    include <unistd.h>
#endif

using vansys::detail::Handle;
using vansys::detail::NativeHandle;

namespace
{

#if defined(_WIN32)
/// Something of the system that is found by its name while it is open. The number does not tell: another
/// thread may get the same one at once.
class Thing
{
public:
    explicit Thing(wchar_t const *name)
        : m_name(L"vansys-handle-" + std::to_wstring(GetCurrentProcessId()) + name),
          m_native(CreateEventW(nullptr, TRUE, FALSE, m_name.c_str()))
    {
    }

    NativeHandle Native() const { return m_native; }
    bool IsOpen() const { return static_cast<bool>(Handle(OpenEventW(SYNCHRONIZE, FALSE, m_name.c_str()))); }

private:
    std::wstring m_name;
    NativeHandle m_native;
};

void SetError(int error)
{
    SetLastError(static_cast<DWORD>(error));
}

int Error()
{
    return static_cast<int>(GetLastError());
}

NativeHandle const NeverOpen = reinterpret_cast<HANDLE>(0x12340);
NativeHandle const Nothing[] = {nullptr, INVALID_HANDLE_VALUE};
#else
/// A pipe: whether its end for writing is open is seen at the other end.
class Thing
{
public:
    explicit Thing(wchar_t const *)
    {
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        m_reader = Handle(ends[0]);
        m_native = ends[1];
    }

    NativeHandle Native() const { return m_native; }
    bool IsOpen() const
    {
        char unit = 0;
        return read(m_reader.Get(), &unit, 1) != 0; // no end of file
    }

private:
    Handle m_reader;
    NativeHandle m_native;
};

void SetError(int error)
{
    errno = error;
}

int Error()
{
    return errno;
}

constexpr NativeHandle NeverOpen = 1000000;
constexpr NativeHandle Nothing[] = {-1, -ENOENT};
#endif

} // namespace

TEST(Handle, ClosesWhatItOwnsOnce)
{
    static_assert(!std::is_copy_constructible_v<Handle> && !std::is_copy_assignable_v<Handle>);
    Thing const first(L"first");
    Thing const second(L"second");
    {
        Handle owner(first.Native());
        Handle moved(std::move(owner));
        EXPECT_FALSE(owner); // NOLINT(bugprone-use-after-move): moving leaves it empty
        EXPECT_TRUE(moved);
        Handle &alias = moved;
        moved = std::move(alias);
        EXPECT_EQ(moved.Get(), first.Native());
        EXPECT_TRUE(first.IsOpen());

        moved = Handle(second.Native());
        EXPECT_FALSE(first.IsOpen()) << "replaced";
        EXPECT_EQ(moved.Release(), second.Native());
        EXPECT_FALSE(moved);
    }
    EXPECT_TRUE(second.IsOpen()) << "handed over";
    {
        Handle const owner(second.Native());
        EXPECT_TRUE(second.IsOpen());
    }
    EXPECT_FALSE(second.IsOpen());
}

/// Who closes on the way out of a failure has not looked yet why it was one.
TEST(Handle, ClosingKeepsTheErrorCode)
{
    SetError(12345);
    {
        Handle const badOne(NeverOpen);
    }
    EXPECT_EQ(Error(), 12345);
}

TEST(Handle, IsEmptyForWhatFailedCallsReturn)
{
    for (NativeHandle const nothing : Nothing)
    {
        Handle const handle(nothing);
        EXPECT_FALSE(handle);
        EXPECT_EQ(handle.Get(), vansys::detail::NoHandle);
    }
    EXPECT_FALSE(Handle());
}
