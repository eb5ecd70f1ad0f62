#include "main/platform/Handle.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#if defined(_WIN32)
#    include "main/platform/Windows.h"
#else
#    include <fcntl.h>
#endif

using vansys::detail::Handle;
using vansys::detail::NativeHandle;

namespace
{

#if defined(_WIN32)
NativeHandle const Nothing[] = {nullptr, INVALID_HANDLE_VALUE};

NativeHandle NewThing()
{
    return CreateEventW(nullptr, TRUE, FALSE, nullptr);
}

bool IsOpen(NativeHandle thing)
{
    DWORD flags = 0;
    return GetHandleInformation(thing, &flags) != 0;
}
#else
constexpr NativeHandle Nothing[] = {-1, -2};

NativeHandle NewThing()
{
    return open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool IsOpen(NativeHandle thing)
{
    return fcntl(thing, F_GETFD) != -1;
}
#endif

} // namespace

TEST(Handle, ClosesWhatItOwnsOnce)
{
    static_assert(!std::is_copy_constructible_v<Handle> && !std::is_copy_assignable_v<Handle>);
    NativeHandle const first = NewThing();
    NativeHandle const second = NewThing();
    {
        Handle owner(first);
        Handle moved(std::move(owner));
        EXPECT_FALSE(owner); // NOLINT(bugprone-use-after-move): moving leaves it empty
        Handle &alias = moved;
        moved = std::move(alias);
        EXPECT_EQ(moved.Get(), first);
        EXPECT_TRUE(IsOpen(first));
        moved = Handle(second);
        EXPECT_FALSE(IsOpen(first)) << "replaced";
        EXPECT_EQ(moved.Release(), second);
        EXPECT_FALSE(moved);
    }
    EXPECT_TRUE(IsOpen(second)) << "handed over";
    static_cast<void>(Handle(second));
    EXPECT_FALSE(IsOpen(second));
}

TEST(Handle, IsEmptyForWhatFailedCallsReturn)
{
    for (NativeHandle const nothing : Nothing)
        EXPECT_FALSE(Handle(nothing));
    EXPECT_FALSE(Handle());
}
