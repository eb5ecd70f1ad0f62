#include "main/platform/Handle.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#if defined(_WIN32)
#    include "main/platform/Windows.h"
#else
#    include <fcntl.h>
#    include <unistd.h>
#endif

using vansys::detail::Handle;
using vansys::detail::NativeHandle;

namespace
{

// A thing of the system, and whether it is open. Not asked by its number, which another thread may get at
// once.
#if defined(_WIN32)
struct Thing
{
    explicit Thing(wchar_t const *itsName)
        : name(itsName),
          native(CreateEventW(nullptr, TRUE, FALSE, itsName))
    {
    }

    bool IsOpen() const { return static_cast<bool>(Handle(OpenEventW(SYNCHRONIZE, FALSE, name))); }

    wchar_t const *name;
    NativeHandle native;
};

NativeHandle const Nothing[] = {nullptr, INVALID_HANDLE_VALUE};
#else
struct Thing
{
    explicit Thing(wchar_t const *)
    {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        reader = Handle(ends[0]);
        native = ends[1];
    }

    bool IsOpen() const
    {
        char unit = 0;
        return read(reader.Get(), &unit, 1) != 0; // no end of file
    }

    Handle reader;
    NativeHandle native;
};

constexpr NativeHandle Nothing[] = {-1, -2};
#endif

} // namespace

TEST(Handle, ClosesWhatItOwnsOnce)
{
    static_assert(!std::is_copy_constructible_v<Handle> && !std::is_copy_assignable_v<Handle>);
    Thing const first(L"vansys-handle-test-1");
    Thing const second(L"vansys-handle-test-2");
    {
        Handle owner(first.native);
        Handle moved(std::move(owner));
        EXPECT_FALSE(owner); // NOLINT(bugprone-use-after-move): moving leaves it empty
        Handle &alias = moved;
        moved = std::move(alias);
        EXPECT_EQ(moved.Get(), first.native);
        EXPECT_TRUE(first.IsOpen());
        moved = Handle(second.native);
        EXPECT_FALSE(first.IsOpen()) << "replaced";
        EXPECT_EQ(moved.Release(), second.native);
        EXPECT_FALSE(moved);
    }
    EXPECT_TRUE(second.IsOpen()) << "handed over";
    static_cast<void>(Handle(second.native));
    EXPECT_FALSE(second.IsOpen());
}

TEST(Handle, IsEmptyForWhatFailedCallsReturn)
{
    for (NativeHandle const nothing : Nothing)
        EXPECT_FALSE(Handle(nothing));
    EXPECT_FALSE(Handle());
}
