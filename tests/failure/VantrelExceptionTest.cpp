#include "vansys/VantrelException.h"
#include "vansys/AssertHooks.h"
#include "vansys/TFormatStringCore.h"
#include "vansys/TScanStringCore.h"
#include "vansys/ThrowLogicException.h"
#include "vansys/VantrelOutOfMemoryException.h"
#include "vansys/VantrelUserErrorException.h"

#include "support/DebugOutput.h"

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

} // namespace

TEST(VantrelException, StacksMessages)
{
    VantrelException exception(format("first %1"));
    exception.StackMessage(u"plain\n");
    exception.StackMessage(format("second %1"));
    exception.StackMessageFront(format("front %1"));
    exception.StackMessageFront(L"plain front");
    exception.StackMessage("");
    exception.StackMessageFront(TStringCore());
    exception.StackMessage(TFormatStringCore(u"%1").arg(u""));
    exception.StackMessageFront(TFormatStringCore(u""));
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
    expectStacks(VantrelException(Messages{"", "a list is taken as it is"}), {"", "a list is taken as it is"},
                 {});
    expectStacks(VantrelUserErrorException(format("user %1")), {"user X"}, {"user %1"});
    for (char const *const text : {"no such file", "\xC3\xA9", "\xFF", ""})
    {
        TStringCore const expected = TStringCore::fromLocal8Bit(text);
        std::runtime_error const foreign(text);
        expectStacks(VantrelException(foreign), expected.isEmpty() ? Messages{} : Messages{expected}, {});
        TStringCore out = u"before";
        VantrelException::ToString(foreign, out);
        EXPECT_EQ(out, expected);
    }
}

namespace
{

// Classes of a host: one of its own, one derived from that, and one that overrides by hand.

class HostException : public VantrelExceptionOf<HostException>
{
public:
    using VantrelExceptionOf::VantrelExceptionOf;
};

class LineException : public VantrelExceptionOf<LineException, HostException>
{
public:
    using VantrelExceptionOf::VantrelExceptionOf;
};

class PoolException : public VantrelOutOfMemoryException
{
public:
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
    std::initializer_list<VantrelException const *> const sources = {&exception, clone.get()};
    for (VantrelException const *const source : sources)
    {
        EXPECT_THROW(source->Throw(), Thrown);
        try
        {
            source->Throw();
        }
        catch (VantrelException const &caught)
        {
            EXPECT_EQ(typeid(caught), typeid(Thrown));
            EXPECT_EQ(caught.GetMessages(), exception.GetMessages());
            EXPECT_EQ(caught.GetRedactedMessages(), exception.GetRedactedMessages());
        }
    }
}

} // namespace

TEST(VantrelException, CloneAndThrowKeepTheType)
{
    EXPECT_EQ(VantrelOutOfMemoryException().GetMessages(), Messages{"Out of memory"});
    LineException const line(TFormatStringCore("line %1").arg("7"));
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
    auto const failAgain = [&] { rethrow(fail, "outer"); };
    try
    {
        rethrow(failAgain, format("outermost %1"));
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
    TStringCore const expected =
        "LogicAssert failed (but no hook has been set) at vansys/main/icu/Calendar44 "
        "line 61: U_SUCCESS(status)";
    std::unique_ptr<VantrelException> caught;
    std::string const output = debugOutputOf(
        [&]
        {
            try
            {
                ThrowLogicException("vansys/main/icu/Calendar44", 61, "U_SUCCESS(status)");
            }
            catch (VantrelException const &exception)
            {
                caught.reset(exception.Clone());
            }
        });
    EXPECT_EQ(output, expected.toStdString());
    ASSERT_TRUE(caught);
    expectStacks(*caught, {expected}, {});
}

TEST(ThrowLogicException, HookDecides)
{
    static std::string reported;
    reported.clear();
    AssertHooks::SetLogicAssertHook(
        [](char const *file, int line, char const *expression)
        { reported += std::string(file) + ":" + std::to_string(line) + ":" + expression; });
    AssertHooks::SetDebugAssertHook([](char const *, int, char const *) { reported += "debug"; });
    EXPECT_NO_THROW(ThrowLogicException("f", 7, "x"));
    EXPECT_EQ(reported, "f:7:x");
    AssertHooks::SetLogicAssertHook([](char const *, int, char const *) { throw 1; });
    EXPECT_THROW(ThrowLogicException("f", 7, "x"), int);
    AssertHooks::SetLogicAssertHook(nullptr);
    AssertHooks::SetDebugAssertHook(nullptr);
    EXPECT_THROW(ThrowLogicException(nullptr, 7, nullptr), VantrelException);
}
