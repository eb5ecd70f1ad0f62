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

TEST(VantrelException, StacksMessages)
{
    VantrelException exception("first");
    exception.StackMessage(u"second\n");
    exception.StackMessageFront(L"front");
    exception.StackMessage("");
    exception.StackMessageFront(TStringCore());
    EXPECT_EQ(exception.GetMessages(), (Messages{"front", "first", "second\n"}));
    EXPECT_EQ(exception.GetMessagesVector(), (std::vector<TStringCore>{"front", "first", "second\n"}));
    EXPECT_EQ(exception.GetMessagesFront(), u"front");
    EXPECT_EQ(exception.GetConcatenatedMessages(), u"front\nfirst\nsecond\n");
    EXPECT_EQ(exception.CollateMessagesForLog(), u"front\nfirst\nsecond\n");
    EXPECT_TRUE(exception.GetRedactedMessages().empty());

    VantrelException const copy = exception;
    exception.SetMessage("only");
    EXPECT_EQ(exception.GetMessages(), Messages{"only"});
    exception.SetMessage(u"units");
    EXPECT_EQ(exception.GetMessages(), Messages{"units"});
    exception.SetMessage(L"");
    EXPECT_TRUE(exception.GetMessages().empty());
    EXPECT_EQ(copy.GetMessages().size(), 3u);
    exception = copy;
    EXPECT_EQ(exception.GetMessages(), copy.GetMessages());

    VantrelException const none{TStringCore()};
    EXPECT_EQ(none.GetMessagesFront(), u"");
    EXPECT_EQ(none.GetConcatenatedMessages(), u"");
    EXPECT_EQ(VantrelException(Messages{"", "x"}).GetMessages().size(), 2u) << "a list is taken as it is";
}

TEST(VantrelException, StacksRedactedMessages)
{
    auto const format = [](char const *text) { return TFormatStringCore(text).arg(u"X"); };
    VantrelException exception(format("first %1"));
    exception.StackMessage(u"plain");
    exception.StackMessage(format("second %1"));
    exception.StackMessageFront(format("front %1"));
    exception.StackMessageFront("plain front");
    exception.StackMessage(TFormatStringCore(u"%1").arg(u""));
    exception.StackMessageFront(TFormatStringCore(u""));
    Messages const messages = {"plain front", "front X", "first X", "plain", "second X"};
    Messages const redacted = {"front %1", "first %1", "second %1"};
    EXPECT_EQ(exception.GetMessages(), messages);
    EXPECT_EQ(exception.GetRedactedMessages(), redacted);

    using Add = void (VantrelException::*)(TFormatStringCore const &);
    for (Add const add : {Add{&VantrelException::StackMessage}, Add{&VantrelException::StackMessageFront},
                          Add{&VantrelException::SetMessage}})
        EXPECT_THROW((exception.*add)(format("too few for %2")), TFormatStringCore::Exception);

    VantrelException const copy = exception;
    std::unique_ptr<VantrelException> const clone(exception.Clone());
    VantrelException assigned(format("replaced %1"));
    assigned = exception;
    for (VantrelException const *other : {&copy, static_cast<VantrelException const *>(clone.get()),
                                          static_cast<VantrelException const *>(&assigned)})
    {
        EXPECT_EQ(other->GetMessages(), messages);
        EXPECT_EQ(other->GetRedactedMessages(), redacted);
    }

    exception.SetMessage(format("only %1"));
    EXPECT_EQ(exception.GetMessages(), Messages{"only X"});
    EXPECT_EQ(exception.GetRedactedMessages(), Messages{"only %1"});
    exception.SetMessage("plain");
    EXPECT_TRUE(exception.GetRedactedMessages().empty());
    exception = copy;
    exception.SetMessage(TFormatStringCore(u"%1").arg(u""));
    EXPECT_TRUE(exception.GetMessages().empty());
    EXPECT_TRUE(exception.GetRedactedMessages().empty());
    EXPECT_TRUE(VantrelException(TFormatStringCore(u"%1").arg(u"")).GetRedactedMessages().empty());
    EXPECT_EQ(VantrelUserErrorException(format("user %1")).GetRedactedMessages(), Messages{"user %1"});
}

TEST(VantrelException, TakesTheTextOfForeignExceptions)
{
    for (char const *const text : {"no such file", "\xC3\xA9", "\xFF", ""})
    {
        TStringCore const expected = TStringCore::fromLocal8Bit(text);
        VantrelException const exception{std::runtime_error(text)};
        EXPECT_EQ(exception.GetMessagesFront(), expected);
        EXPECT_EQ(exception.GetMessages().size(), expected.isEmpty() ? 0u : 1u);
        EXPECT_TRUE(exception.GetRedactedMessages().empty());
        TStringCore out = u"before";
        VantrelException::ToString(std::runtime_error(text), out);
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

TEST(VantrelException, StackExceptionAndRethrowAddsToTheSameObject)
{
    try
    {
        try
        {
            throw VantrelOutOfMemoryException("inner");
        }
        catch (...)
        {
            try
            {
                StackExceptionAndRethrow("outer");
            }
            catch (...)
            {
                StackExceptionAndRethrow(TFormatStringCore("outermost %1").arg("X"));
            }
        }
    }
    catch (VantrelOutOfMemoryException const &exception)
    {
        EXPECT_EQ(exception.GetMessages(), (Messages{"inner", "outer", "outermost X"}));
        EXPECT_EQ(exception.GetRedactedMessages(), Messages{"outermost %1"});
    }
    auto const rethrowForeign = [](auto const &message)
    {
        try
        {
            throw std::runtime_error("foreign");
        }
        catch (...)
        {
            StackExceptionAndRethrow(message);
        }
    };
    EXPECT_THROW(rethrowForeign("outer"), std::runtime_error);
    EXPECT_THROW(rethrowForeign(TFormatStringCore("without its argument: %1")), std::runtime_error);
}

TEST(ThrowLogicException, WithoutHookThrowsAndWritesToTheDebugger)
{
    char const *const expected =
        "LogicAssert failed (but no hook has been set) at vansys/main/icu/Calendar44 "
        "line 61: U_SUCCESS(status)";
    EXPECT_EQ(debugOutputOf(
                  [&]
                  {
                      try
                      {
                          ThrowLogicException("vansys/main/icu/Calendar44", 61, "U_SUCCESS(status)");
                          ADD_FAILURE();
                      }
                      catch (VantrelException const &exception)
                      {
                          EXPECT_EQ(exception.GetMessages(), Messages{expected});
                          EXPECT_TRUE(exception.GetRedactedMessages().empty());
                      }
                  }),
              expected);
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
