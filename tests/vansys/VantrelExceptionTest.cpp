#include "vansys/VantrelException.h"
#include "vansys/AssertHooks.h"
#include "vansys/ThrowLogicException.h"
#include "vansys/VantrelOutOfMemoryException.h"
#include "vansys/VantrelUserErrorException.h"

#include "support/DebugOutput.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

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

TEST(VantrelException, CloneAndThrowKeepTheType)
{
    std::unique_ptr<VantrelException> const memory(VantrelOutOfMemoryException().Clone());
    EXPECT_THROW(memory->Throw(), VantrelOutOfMemoryException);
    EXPECT_EQ(memory->GetConcatenatedMessages(), u"Out of memory\n");

    VantrelUserErrorException const user("no such file");
    std::unique_ptr<VantrelException> const plain(user.Clone());
    for (VantrelException const *exception :
         {static_cast<VantrelException const *>(&user), static_cast<VantrelException const *>(plain.get())})
    {
        try
        {
            exception->Throw();
        }
        catch (VantrelUserErrorException const &)
        {
            FAIL() << "a user error is re-thrown as a plain exception";
        }
        catch (VantrelException const &caught)
        {
            EXPECT_EQ(caught.GetMessagesFront(), u"no such file");
        }
    }
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
            StackExceptionAndRethrow("outer");
        }
    }
    catch (VantrelOutOfMemoryException const &exception)
    {
        EXPECT_EQ(exception.GetMessages(), (Messages{"inner", "outer"}));
    }
    auto const rethrowForeign = []
    {
        try
        {
            throw std::runtime_error("foreign");
        }
        catch (...)
        {
            StackExceptionAndRethrow("outer");
        }
    };
    EXPECT_THROW(rethrowForeign(), std::runtime_error);
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
