// Linked into a program so that its `malloc`, `realloc` and `new`, and those of the library, come here.

#include "support/FailingAllocations.h"

#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

namespace
{

/// Allocations left until one fails; negative when none is to fail. Counts on the test's thread only.
thread_local int t_untilFailure = -1;

bool failsNow()
{
    return t_untilFailure >= 0 && t_untilFailure-- == 0;
}

} // namespace

extern "C" void *__real_malloc(std::size_t size);
extern "C" void *__real_realloc(void *memory, std::size_t size);

// A compiler may turn a `realloc` of nothing into `malloc`.
extern "C" void *__wrap_malloc(std::size_t size)
{
    return failsNow() ? nullptr : __real_malloc(size);
}

extern "C" void *__wrap_realloc(void *memory, std::size_t size)
{
    return failsNow() ? nullptr : __real_realloc(memory, size);
}

void *operator new(std::size_t size, std::nothrow_t const &) noexcept
{
    return failsNow() ? nullptr : __real_malloc(size);
}

void *operator new(std::size_t size)
{
    void *const memory = operator new(size, std::nothrow);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::nothrow_t const &) noexcept
{
    std::free(memory);
}

int failEachAllocation(std::function<void()> const &prepare, std::function<void()> const &operation,
                       std::function<void()> const &check)
{
    for (int failures = 0;; ++failures)
    {
        prepare();
        bool failed = true;
        std::string message;
        t_untilFailure = failures;
        try
        {
            operation();
            failed = false;
        }
        catch (TStringCore::Exception const &exception)
        {
            t_untilFailure = -1;
            message = exception.GetConcatenatedMessages().toStdString();
        }
        catch (std::bad_alloc const &)
        {
            t_untilFailure = -1;
            message = "Out of memory";
        }
        t_untilFailure = -1;
        if (!failed)
            return failures;
        EXPECT_EQ(message, "Out of memory");
        check();
    }
}
