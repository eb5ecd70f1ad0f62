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

} // namespace

TEST(FormatAllocationFailure, FormatsStayAsTheyWere)
{
    using Format = TFormatStringCore;
    TStringCore const longText(LongUtf8);
    std::function<void(Format &)> const operations[] = {
        [&](Format &f) { f.arg(longText); },
        [&](Format &f) { f.arg(longText, 100); },
        [&](Format &f) { f.arg(longText, -100); },
        [](Format &f) { f.arg(LongUtf8); },
        [&](Format &f) { f.arg(longText, longText, LongUtf8); },
        [&](Format &f) { f.arg(std::vector<TStringCore>(3, longText)); },
        [](Format &f) { f.arg(1.0, 0, 'f', 50); },
        [](Format &f) { f = LongUtf8; },
        [](Format &f) { f = TStringCore(u"%1 %2 %3"); },
        [](Format &f) { f = Format(u"%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1").arg(u"x"); },
        [](Format &f) { (void)f.result(); },
        [&](Format &) { (void)FormatText("%1 in a text that is too long to be held inline", longText); },
    };
    for (auto const &operation : operations)
    {
        std::optional<Format> format;
        int const failures = failEachAllocation(
            [&]
            {
                format.emplace(u"%1 is text that is kept, and so is %2");
                format->arg(u"this", u"that");
            },
            [&] { operation(*format); },
            [&]
            {
                EXPECT_EQ(format->result(), u"this is text that is kept, and so is that");
                *format = u"%3";
                EXPECT_THROW(format->result(), Format::Exception) << "two arguments are bound";
            });
        EXPECT_GE(failures, 1);
    }
}

TEST(FormatAllocationFailure, ExceptionsKeepBothStacks)
{
    TFormatStringCore const format = TFormatStringCore(LongUtf8).arg(u"this");
    std::function<void(VantrelException &)> const operations[] = {
        [&](VantrelException &e) { e.StackMessage(format); },
        [&](VantrelException &e) { e.StackMessageFront(format); },
        [&](VantrelException &e) { e.SetMessage(format); },
        [&](VantrelException &e) { e = VantrelException(format); },
        [](VantrelException &e) { e = VantrelException(std::runtime_error(LongUtf8)); },
    };
    for (auto const &operation : operations)
    {
        std::optional<VantrelException> exception;
        int const failures = failEachAllocation(
            [&] { exception.emplace(TFormatStringCore(u"<%1>").arg(u"x")); }, [&] { operation(*exception); },
            [&]
            {
                EXPECT_EQ(exception->GetMessages(), std::list<TStringCore>{u"<x>"});
                EXPECT_EQ(exception->GetRedactedMessages(), std::list<TStringCore>{u"<%1>"});
            });
        EXPECT_GE(failures, 1);
    }
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
    std::function<void(TScanStringCore &, TStringCore &)> const operations[] = {
        [](TScanStringCore &s, TStringCore &out) { s.readString(out, -1); },
        [](TScanStringCore &s, TStringCore &out) { s.readLine(out); },
        [](TScanStringCore &s, TStringCore &) { s.skip("000000000000000000000000000000000000000042"); },
        [](TScanStringCore &s, TStringCore &)
        {
            int value = 0;
            s.readInt(value);
        },
        [](TScanStringCore &s, TStringCore &)
        {
            double value = 0;
            s.readFloat(value);
        },
    };
    TStringCore const text(u"> 000000000000000000000000000000000000000042 is the answer");
    for (auto const &operation : operations)
    {
        TScanStringCore scan(text);
        TStringCore out;
        int const failures = failEachAllocation(
            [&]
            {
                scan.reset().skip("> ");
                out = u"before";
            },
            [&] { operation(scan, out); },
            [&]
            {
                EXPECT_EQ(scan.index(), 2);
                EXPECT_EQ(out, u"before");
            });
        EXPECT_GE(failures, 1);
    }
}
