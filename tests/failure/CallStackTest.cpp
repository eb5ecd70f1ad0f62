#include "vansys/VantrelException.h"

#include "vansys/TFormatStringCore.h"
#include "vansys/VantrelExceptionOf.h"
#include "vansys/VantrelOutOfMemoryException.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

static_assert(sizeof(VantrelException) == 3 * sizeof(void *), "a vtable and two lists");

struct HostException : VantrelExceptionOf<HostException>
{
    using VantrelExceptionOf::VantrelExceptionOf;
};

// Functions with names, which all debuggers know.
VantrelException *MakeFromText()
{
    return new VantrelException(TStringCore("text"));
}
VantrelException *MakeFromFormat()
{
    return new VantrelException(TFormatStringCore("format"));
}
VantrelException *MakeFromStandard()
{
    return new VantrelException(std::runtime_error("standard"));
}
VantrelException *MakeFromList()
{
    return new VantrelException(std::list<TStringCore>{u"list"});
}

/// Exceptions made during its life have call stacks.
class Capturing
{
public:
    Capturing() { VantrelException::CaptureCallStacks(true); }
    ~Capturing() { VantrelException::CaptureCallStacks(false); }
    Capturing(Capturing const &) = delete;
    Capturing &operator=(Capturing const &) = delete;
};

} // namespace

TEST(CallStack, IsCapturedWhenWanted)
{
    EXPECT_FALSE(VantrelException::CapturesCallStacks());
    VantrelException const before("before");
    {
        Capturing const capturing;
        EXPECT_TRUE(VantrelException::CapturesCallStacks());
        EXPECT_TRUE(before.CallStack().IsEmpty());
        EXPECT_TRUE(VantrelException(before).CallStack().IsEmpty()) << "a copy is not made anew";

        // However it is made, its stack begins here.
        for (auto *const make : {MakeFromText, MakeFromFormat, MakeFromStandard, MakeFromList})
        {
            std::unique_ptr<VantrelException> const exception(make());
            std::vector<std::string> const lines = exception->CallStack().Lines();
            ASSERT_FALSE(lines.empty());
            EXPECT_NE(lines[0].find("CallStackTest.cpp("), std::string::npos) << lines[0];
        }
        EXPECT_NE(HostException("derived").CallStack().Text().find("TestBody"), std::string::npos);
    }
    EXPECT_TRUE(VantrelException("after").CallStack().IsEmpty());
}

TEST(CallStack, GoesWithTheCopies)
{
    std::unique_ptr<VantrelException> thrown;
    std::unique_ptr<HostException> original;
    {
        Capturing const capturing;
        original = std::make_unique<HostException>("host");
    }
    TCapturedStack const stack = original->CallStack();
    EXPECT_FALSE(stack.IsEmpty());
    std::unique_ptr<VantrelException> const clone(original->Clone());
    try
    {
        original->Throw();
    }
    catch (HostException &caught)
    {
        caught.StackMessage("more");
        caught.SetMessage("other");
        thrown = std::make_unique<HostException>(caught);
    }
    VantrelException assigned("assigned");
    assigned = *original;
    HostException *const self = original.get();
    *original = *self;
    EXPECT_EQ(original->CallStack(), stack);
    original.reset();
    EXPECT_EQ(clone->CallStack(), stack);
    EXPECT_EQ(thrown->CallStack(), stack);
    EXPECT_EQ(assigned.CallStack(), stack);
    assigned = VantrelException("without");
    EXPECT_TRUE(assigned.CallStack().IsEmpty());
}

TEST(CallStack, IsThatOfTheObjectWhateverWasThereBefore)
{
    // Objects follow one another at the same address.
    alignas(VantrelException) std::array<unsigned char, sizeof(VantrelException)> place;
    for (int i = 0; i < 4; ++i)
    {
        VantrelException::CaptureCallStacks(i % 2 == 0);
        auto *const exception = new (place.data()) VantrelException("here");
        EXPECT_EQ(exception->CallStack().IsEmpty(), i % 2 == 1) << i;
        exception->~VantrelException();
    }
    VantrelException::CaptureCallStacks(false);
}

TEST(CallStack, OfManyThreadsDoNotMeet)
{
    Capturing const capturing;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(
            []
            {
                std::vector<VantrelException> exceptions;
                for (int j = 0; j < 500; ++j) // grows, so that they are copied and destroyed
                {
                    exceptions.emplace_back("thread");
                    ASSERT_FALSE(exceptions[static_cast<std::size_t>(j) / 2].CallStack().IsEmpty());
                }
            });
    for (std::thread &thread : threads)
        thread.join();
}
