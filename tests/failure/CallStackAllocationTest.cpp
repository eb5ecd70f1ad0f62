#include "vansys/VantrelException.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <optional>

/// Fails each allocation of an operation, which counts as failed as long as the exception has no call stack.
/// Returns how often it had none though nothing was thrown.
static int CountWithoutStack(std::optional<VantrelException> &exception, auto prepare, auto operation)
{
    int withoutStack = 0;
    auto const needsStack = [&]
    {
        operation();
        if (!exception->CallStack().IsEmpty())
            return;
        ++withoutStack;
        throw std::bad_alloc();
    };
    auto const check = [&] { EXPECT_TRUE(!exception || exception->CallStack().IsEmpty()); };
    failEachAllocation(prepare, needsStack, check);
    return withoutStack;
}

TEST(CallStackAllocation, OfAnExceptionMayBeMissingAndNothingElse)
{
    VantrelException::CaptureCallStacks(true);
    VantrelException const original("original");
    std::optional<VantrelException> made;
    auto const make = [&] { made.emplace("made"); };
    int const withoutStack = CountWithoutStack(
        made, [&] { made.reset(); }, make);
    EXPECT_EQ(withoutStack, 2) << "the stack, and its place in the table";
    VantrelException::CaptureCallStacks(false);

    EXPECT_GT(CountWithoutStack(made, make, [&] { made = original; }), 0);
    EXPECT_EQ(made->GetMessages(), original.GetMessages());
    EXPECT_EQ(made->CallStack(), original.CallStack());
}
