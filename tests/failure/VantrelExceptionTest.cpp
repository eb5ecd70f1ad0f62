#include "vansys/VantrelException.h"
#include "vansys/TFormatStringCore.h"
#include "vansys/TScanStringCore.h"
#include "vansys/ThrowLogicException.h"
#include "vansys/VantrelOutOfMemoryException.h"
#include "vansys/VantrelUserErrorException.h"

#include "support/DebugOutput.h"
#include "support/FailureMessage.h"
#include "support/RecordedAssertions.h"
#include "support/Stress.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <typeinfo>

using Messages = std::list<TStringCore>;

namespace
{

static_assert(sizeof(VantrelException) == 3 * sizeof(void *), "a vtable and two lists");

TFormatStringCore format(char const *text)
{
    return TFormatStringCore(text).arg(u"X");
}

void expectStacks(VantrelException const &exception, Messages const &messages, Messages const &redacted)
{
    EXPECT_EQ(exception.GetMessages(), messages);
    EXPECT_EQ(exception.GetRedactedMessages(), redacted);
    EXPECT_EQ(exception.GetMessagesVector(), std::vector(messages.begin(), messages.end()));
    EXPECT_EQ(exception.GetMessagesFront(), messages.empty() ? TStringCore() : messages.front());
    EXPECT_EQ(exception.CollateMessagesForLog(), exception.GetConcatenatedMessages());
}

/// A copy of what the action throws, which must be of just that type.
template <class Thrown>
VantrelException Caught(auto const &action)
{
    try
    {
        action();
    }
    catch (VantrelException const &exception)
    {
        EXPECT_EQ(typeid(exception), typeid(Thrown));
        return exception;
    }
    return VantrelException("nothing is thrown");
}

// Classes of a host: one of its own, and one derived from that.

struct HostException : VantrelExceptionOf<HostException>
{
    using VantrelExceptionOf::VantrelExceptionOf;
};

struct LineException : VantrelExceptionOf<LineException, HostException>
{
    using VantrelExceptionOf::VantrelExceptionOf;
};

/// Expects that the exception and its clone throw a `Thrown` with the same messages, and that the clone has
/// the type `Typed`.
template <class Thrown, class Typed = Thrown>
void expectCopies(auto const &exception)
{
    std::unique_ptr<Typed> const clone(exception.Clone());
    for (bool const isOriginal : {true, false})
        expectStacks(Caught<Thrown>([&] { isOriginal ? exception.Throw() : clone->Throw(); }),
                     exception.GetMessages(), exception.GetRedactedMessages());
}

struct CallStack : testing::Test
{
    ~CallStack() override { VantrelException::CaptureCallStacks(false); }
};

} // namespace

TEST(VantrelException, StacksMessages)
{
    VantrelException exception(format("first %1"));
    exception.StackMessage(u"plain\n");
    exception.StackMessage(format("second %1"));
    exception.StackMessageFront(format("front %1"));
    exception.StackMessageFront(L"plain front");
    exception.StackMessage(""); // adds nothing
    exception.StackMessageFront(TStringCore());
    exception.StackMessage(TFormatStringCore(u"%1").arg(u""));
    Messages const messages = {"plain front", "front X", "first X", "plain\n", "second X"};
    Messages const redacted = {"front %1", "first %1", "second %1"};
    using Add = void (VantrelException::*)(TFormatStringCore const &);
    for (Add const add : {Add{&VantrelException::StackMessage}, Add{&VantrelException::StackMessageFront},
                          Add{&VantrelException::SetMessage}})
        EXPECT_THROW((exception.*add)(format("too few for %2")), TFormatStringCore::Exception);
    expectStacks(exception, messages, redacted);
    EXPECT_EQ(exception.GetConcatenatedMessages(), u"plain front\nfront X\nfirst X\nplain\nsecond X\n");

    VantrelException const copy = exception;
    VantrelException assigned(format("replaced %1"));
    assigned = exception;
    exception.SetMessage(format("only %1"));
    expectStacks(exception, {"only X"}, {"only %1"});
    exception.SetMessage(u"plain");
    expectStacks(exception, {"plain"}, {});
    expectStacks(copy, messages, redacted);
    expectStacks(assigned, messages, redacted);
    assigned.SetMessage(TFormatStringCore(u"%1").arg(u""));
    expectStacks(assigned, {}, {});
    expectStacks(VantrelException(Messages{"", "as it is"}), {"", "as it is"}, {});
    expectStacks(VantrelUserErrorException(format("user %1")), {"user X"}, {"user %1"});
    for (char const *const text : {"no such file", "\xC3\xA9", "\xFF", ""})
    {
        TStringCore out = u"before";
        VantrelException::ToString(std::runtime_error(text), out);
        EXPECT_EQ(out, TStringCore::fromLocal8Bit(text));
        expectStacks(VantrelException(std::runtime_error(text)), Messages(out.isEmpty() ? 0 : 1, out), {});
    }
}

TEST(VantrelException, CloneAndThrowKeepTheType)
{
    expectStacks(VantrelOutOfMemoryException(), {"Out of memory"}, {});
    LineException const line(format("line %1"));
    expectCopies<VantrelException>(VantrelException("plain"));
    expectCopies<VantrelOutOfMemoryException>(VantrelOutOfMemoryException());
    expectCopies<VantrelException>(VantrelUserErrorException("stored as a plain exception"));
    expectCopies<TScanStringCore::Exception>(TScanStringCore::Exception(L"wide"));
    expectCopies<TFormatStringCore::Exception>(TFormatStringCore::Exception(Messages{"a", "b"}));
    expectCopies<LineException>(line);
    expectCopies<LineException, HostException>(static_cast<HostException const &>(line));
}

TEST(VantrelException, StackExceptionAndRethrowKeepsTheType)
{
    auto const rethrow = [](auto const &inner, auto const &message)
    {
        try
        {
            inner();
        }
        catch (...)
        {
            StackExceptionAndRethrow(message);
        }
    };
    auto const fail = [] { throw VantrelOutOfMemoryException("inner"); };
    expectStacks(Caught<VantrelOutOfMemoryException>(
                     [&] { rethrow([&] { rethrow(fail, "outer"); }, format("outermost %1")); }),
                 {"inner", "outer", "outermost X"}, {"outermost %1"});
    auto const failForeign = [] { throw std::runtime_error("foreign"); };
    EXPECT_THROW(rethrow(failForeign, "outer"), std::runtime_error);
    EXPECT_THROW(rethrow(failForeign, format("without its argument: %2")), std::runtime_error);
}

TEST(ThrowLogicException, ThrowsUnlessAHookDecides)
{
    TStringCore message;
    auto const fail = [] { ThrowLogicException("vansys/main/icu/Calendar44", 61, "U_SUCCESS(status)"); };
    std::string const output = debugOutputOf([&] { message = FailureMessage<VantrelException>(fail); });
    EXPECT_EQ(message, "LogicAssert failed (but no hook has been set) at vansys/main/icu/Calendar44 "
                       "line 61: U_SUCCESS(status)");
    EXPECT_EQ(output, message.toStdString());
    AssertHooks::SetDebugAssertHook([](char const *, int, char const *) { throw "for other assertions"; });
    {
        RecordedAssertions const recorded;
        EXPECT_NO_THROW(ThrowLogicException("f", 7, "x"));
        EXPECT_EQ(recorded.Take(), std::vector<std::string>{"f:7: x"});
    }
    AssertHooks::SetLogicAssertHook([](char const *, int, char const *) { throw 1; });
    EXPECT_THROW(fail(), int);
    AssertHooks::SetLogicAssertHook(nullptr);
    AssertHooks::SetDebugAssertHook(nullptr);
    EXPECT_THROW(ThrowLogicException(nullptr, 7, nullptr), VantrelException);
}

TEST_F(CallStack, IsCapturedWhenWanted)
{
    EXPECT_FALSE(VantrelException::CapturesCallStacks());
    VantrelException const before("before");
    VantrelException::CaptureCallStacks(true);
    EXPECT_TRUE(VantrelException::CapturesCallStacks());
    EXPECT_TRUE(before.CallStack().IsEmpty());
    EXPECT_TRUE(VantrelException(before).CallStack().IsEmpty()) << "a copy is not made anew";
    // However it is made, its stack begins here.
    auto const stackOf = [](auto const &origin) { return VantrelException(origin).CallStack(); };
    for (TCapturedStack const &stack :
         {stackOf(TStringCore("text")), stackOf(TFormatStringCore("format")),
          stackOf(std::runtime_error("standard")), stackOf(std::list<TStringCore>{u"list"})})
    {
        std::string const first = stack.Text().substr(0, stack.Text().find('\n'));
        EXPECT_NE(first.find("VantrelExceptionTest.cpp("), std::string::npos) << first;
    }
    EXPECT_NE(HostException("derived").CallStack().Text().find("TestBody"), std::string::npos);
    VantrelException::CaptureCallStacks(false);
    EXPECT_TRUE(VantrelException("after").CallStack().IsEmpty());
}

TEST_F(CallStack, GoesWithTheCopies)
{
    VantrelException::CaptureCallStacks(true);
    auto original = std::make_unique<HostException>("host");
    VantrelException::CaptureCallStacks(false);
    TCapturedStack const stack = original->CallStack();
    EXPECT_FALSE(stack.IsEmpty());
    std::unique_ptr<VantrelException> const clone(original->Clone());
    VantrelException thrown = Caught<HostException>([&] { original->Throw(); });
    thrown.SetMessage("other");
    VantrelException assigned("assigned");
    assigned = *original;
    HostException *const self = original.get();
    *original = *self;
    EXPECT_EQ(original->CallStack(), stack);
    original.reset();
    for (VantrelException const *const copy : {clone.get(), &thrown, &assigned})
        EXPECT_EQ(copy->CallStack(), stack);
    assigned = VantrelException("without");
    EXPECT_TRUE(assigned.CallStack().IsEmpty());
}

TEST_F(CallStack, IsThatOfTheObjectWhateverWasThereBefore)
{
    std::optional<VantrelException> exception; // at the same address each time
    for (bool const captures : {true, false, true, false})
    {
        VantrelException::CaptureCallStacks(captures);
        EXPECT_NE(exception.emplace("here").CallStack().IsEmpty(), captures);
    }
}

TEST_F(CallStack, OfManyThreadsDoNotMeet)
{
    VantrelException::CaptureCallStacks(true);
    auto const makeSome = [](StressRandom &)
    {
        std::vector<VantrelException> exceptions;
        for (std::size_t i = 0; i < 8; ++i) // grows, so that they are copied and destroyed
        {
            exceptions.emplace_back("thread");
            ASSERT_FALSE(exceptions[i / 2].CallStack().IsEmpty());
        }
    };
    RunStress(4, makeSome);
}
