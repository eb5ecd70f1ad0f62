// Allocations that fail in what makes messages, and in what reads text: the object is as it was.

#include "vansys/TFormatLiteral.h"
#include "vansys/TFormatStringCore.h"
#include "vansys/TScanStringCore.h"
#include "vansys/VantrelException.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <optional>
#include <stdexcept>
#include <vector>

namespace
{

constexpr char LongUtf8[] = "%1 is an argument or a format that is too long to be held inline";

/// Runs each operation on what `make` puts there, with every allocation failing in turn.
template <class Object>
void FailEach(std::function<void(std::optional<Object> &)> const &make,
              std::vector<std::function<void(Object &)>> const &operations,
              std::function<void(Object &)> const &check)
{
    for (auto const &operation : operations)
    {
        std::optional<Object> object;
        EXPECT_GE(
            failEachAllocation([&] { make(object); }, [&] { operation(*object); }, [&] { check(*object); }),
            1);
    }
}

} // namespace

TEST(FormatAllocationFailure, FormatsStayAsTheyWere)
{
    using Format = TFormatStringCore;
    TStringCore const longText(LongUtf8);
    FailEach<Format>(
        [](std::optional<Format> &format)
        {
            format.emplace(u"%1 is text that is kept, and so is %2");
            format->arg(u"this", u"that");
        },
        {
            [&](Format &f) { f.arg(longText, 100); },
            [&](Format &f) { f.arg(longText, longText, LongUtf8); },
            [&](Format &f) { f.arg(std::vector<TStringCore>(3, longText)); },
            [](Format &f) { f.arg(1.0, 0, 'f', 50); },
            [](Format &f) { f = LongUtf8; },
            [](Format &f) { f = TStringCore(u"%1 %2 %3"); },
            [](Format &f) { f = Format(u"%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1").arg(u"x"); },
            [](Format &f) { (void)f.result(); },
            [&](Format &) { (void)FormatText("%1 in a text that is too long to be held inline", longText); },
        },
        [](Format &format)
        {
            EXPECT_EQ(format.result(), u"this is text that is kept, and so is that");
            format = u"%3";
            EXPECT_THROW(format.result(), Format::Exception) << "two arguments are bound";
        });
}

TEST(FormatAllocationFailure, ExceptionsKeepBothStacks)
{
    using Exception = VantrelException;
    TFormatStringCore const format = TFormatStringCore(LongUtf8).arg(u"this");
    FailEach<Exception>([](std::optional<Exception> &e) { e.emplace(TFormatStringCore(u"<%1>").arg(u"x")); },
                        {
                            [&](Exception &e) { e.StackMessage(format); },
                            [&](Exception &e) { e.StackMessageFront(format); },
                            [&](Exception &e) { e.SetMessage(format); },
                            [](Exception &e) { e = Exception(std::runtime_error(LongUtf8)); },
                        },
                        [](Exception &e)
                        {
                            EXPECT_EQ(e.GetMessages(), std::list<TStringCore>{u"<x>"});
                            EXPECT_EQ(e.GetRedactedMessages(), std::list<TStringCore>{u"<%1>"});
                        });
}

/// Where the code page cannot be asked, the text of a foreign exception is taken for UTF-8.
TEST(FormatAllocationFailure, ForeignExceptionsAreConvertedInAnotherWay)
{
    std::runtime_error const foreign(LongUtf8);
    TStringCore out;
    EXPECT_EQ(failEachAllocation([] {}, [&] { VantrelException::ToString(foreign, out); }, [] {}), 0);
    EXPECT_EQ(out, LongUtf8);
}

TEST(FormatAllocationFailure, ScannersStayWhereTheyWere)
{
    static TStringCore const text(u"> 000000000000000000000000000000000000000042 is the answer");
    static TStringCore out;
    static double number;
    static int integer;
    FailEach<TScanStringCore>(
        [](std::optional<TScanStringCore> &scan)
        {
            scan.emplace(text).skip("> ");
            out = TStringCore(u"before"); // by move, which gives the block back
        },
        {
            [](TScanStringCore &s) { s.readString(out, -1); },
            [](TScanStringCore &s) { s.readLine(out); },
            [](TScanStringCore &s) { s.skip("000000000000000000000000000000000000000042"); },
            [](TScanStringCore &s) { s.readInt(integer); },
            [](TScanStringCore &s) { s.readFloat(number); },
        },
        [](TScanStringCore &scan)
        {
            EXPECT_EQ(scan.index(), 2);
            EXPECT_EQ(out, u"before");
        });
}
