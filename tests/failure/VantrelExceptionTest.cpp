#include "vansys/VantrelException.h"
#include "vansys/TFormatStringCore.h"
#include "vansys/TScanStringCore.h"
#include "vansys/ThrowLogicException.h"
#include "vansys/VantrelOutOfMemoryException.h"
#include "vansys/VantrelUserErrorException.h"

#include "support/DebugOutput.h"
#include "support/FailureMessage.h"
#include "support/RecordedAssertions.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>

using Messages = std::list<TStringCore>;

namespace
{

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

// Classes of a host: one of its own, one derived from that, and one that overrides by hand.

struct HostException : VantrelExceptionOf<HostException>
{
    using VantrelExceptionOf::VantrelExceptionOf;
};

struct LineException : VantrelExceptionOf<LineException, HostException>
{
    using VantrelExceptionOf::VantrelExceptionOf;
};

struct PoolException : VantrelOutOfMemoryException
{
    using VantrelOutOfMemoryException::VantrelOutOfMemoryException;

    PoolException *Clone() const override { return new PoolException(*this); }
    [[noreturn]] void Throw() const override { throw PoolException(*this); }
};

/// Expects that the exception and its clone throw a `Thrown` with the same messages, and that the clone has
/// the type `Typed`.
template <class Thrown, class Typed = Thrown>
void expectCopies(auto const &exception)
{
    Typed *const typed = exception.Clone();
    std::unique_ptr<VantrelException> const clone(typed);
    VantrelException const *const sources[] = {&exception, clone.get()};
    for (auto const *const source : sources)
    {
        try
        {
            source->Throw();
        }
        catch (VantrelException const &caught)
        {
            EXPECT_EQ(typeid(caught), typeid(Thrown));
            expectStacks(caught, exception.GetMessages(), exception.GetRedactedMessages());
        }
    }
}

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
    expectStacks(VantrelException(L""), {}, {});
    expectStacks(VantrelException(Messages{"", "as it is"}), {"", "as it is"}, {});
    expectStacks(VantrelUserErrorException(format("user %1")), {"user X"}, {"user %1"});
    for (char const *const text : {"no such file", "\xC3\xA9", "\xFF", ""})
    {
        std::runtime_error const foreign(text);
        TStringCore out = u"before";
        VantrelException::ToString(foreign, out);
        EXPECT_EQ(out, TStringCore::fromLocal8Bit(text));
        expectStacks(VantrelException(foreign), Messages(out.isEmpty() ? 0 : 1, out), {});
    }
}

TEST(VantrelException, CloneAndThrowKeepTheType)
{
    EXPECT_EQ(VantrelOutOfMemoryException().GetMessages(), Messages{"Out of memory"});
    LineException const line(format("line %1"));
    expectCopies<VantrelException>(VantrelException("plain"));
    expectCopies<VantrelOutOfMemoryException>(VantrelOutOfMemoryException());
    expectCopies<VantrelException>(VantrelUserErrorException("stored as a plain exception"));
    expectCopies<TScanStringCore::Exception>(TScanStringCore::Exception(L"wide"));
    expectCopies<TFormatStringCore::Exception>(TFormatStringCore::Exception(Messages{"a", "b"}));
    expectCopies<LineException>(line);
    expectCopies<LineException, HostException>(static_cast<HostException const &>(line));
    expectCopies<PoolException>(PoolException(u"pool"));
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
    try
    {
        rethrow([&] { rethrow(fail, "outer"); }, format("outermost %1"));
        ADD_FAILURE();
    }
    catch (VantrelOutOfMemoryException const &exception)
    {
        expectStacks(exception, {"inner", "outer", "outermost X"}, {"outermost %1"});
    }
    auto const failForeign = [] { throw std::runtime_error("foreign"); };
    EXPECT_THROW(rethrow(failForeign, "outer"), std::runtime_error);
    EXPECT_THROW(rethrow(failForeign, format("without its argument: %2")), std::runtime_error);
}

TEST(ThrowLogicException, WithoutHookThrowsAndWritesToTheDebugger)
{
    TStringCore message;
    std::string const output = debugOutputOf(
        [&]
        {
            message = FailureMessage<VantrelException>(
                [] { ThrowLogicException("vansys/main/icu/Calendar44", 61, "U_SUCCESS(status)"); });
        });
    EXPECT_EQ(message, "LogicAssert failed (but no hook has been set) at vansys/main/icu/Calendar44 "
                       "line 61: U_SUCCESS(status)");
    EXPECT_EQ(output, message.toStdString());
}

TEST(ThrowLogicException, HookDecides)
{
    AssertHooks::SetDebugAssertHook([](char const *, int, char const *) { throw "for other assertions"; });
    {
        RecordedAssertions const recorded;
        EXPECT_NO_THROW(ThrowLogicException("f", 7, "x"));
        EXPECT_EQ(recorded.Take(), std::vector<std::string>{"f:7: x"});
    }
    AssertHooks::SetLogicAssertHook([](char const *, int, char const *) { throw 1; });
    EXPECT_THROW(ThrowLogicException("f", 7, "x"), int);
    AssertHooks::SetLogicAssertHook(nullptr);
    AssertHooks::SetDebugAssertHook(nullptr);
    EXPECT_THROW(ThrowLogicException(nullptr, 7, nullptr), VantrelException);
}
