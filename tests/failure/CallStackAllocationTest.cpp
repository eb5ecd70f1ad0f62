#include "vansys/VantrelException.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

TEST(CallStackAllocation, OfAnExceptionMayBeMissingAndNothingElse)
{
    VantrelException::CaptureCallStacks(true);
    std::optional<VantrelException> original("original");
    VantrelException::CaptureCallStacks(false);
    VantrelException target("target");
    int withoutStack = 0;
    // Of each of them, one allocation fails; the operation counts as failed as long as it has no call stack.
    failEachAllocation([&] { target.SetMessage("target"); },
                       [&]
                       {
                           target = *original;
                           if (!target.CallStack().IsEmpty())
                               return;
                           ++withoutStack;
                           throw std::bad_alloc();
                       },
                       [] {});
    EXPECT_GT(withoutStack, 0);
    EXPECT_EQ(target.GetMessages(), original->GetMessages());
    EXPECT_EQ(target.CallStack(), original->CallStack());

    VantrelException::CaptureCallStacks(true);
    std::optional<VantrelException> made;
    withoutStack = 0;
    failEachAllocation([&] { made.reset(); },
                       [&]
                       {
                           made.emplace("made");
                           if (!made->CallStack().IsEmpty())
                               return;
                           ++withoutStack;
                           throw std::bad_alloc();
                       },
                       [&] { EXPECT_TRUE(!made || made->CallStack().IsEmpty()); });
    VantrelException::CaptureCallStacks(false);
    EXPECT_EQ(withoutStack, 2) << "the stack, and its place in the table";
}
