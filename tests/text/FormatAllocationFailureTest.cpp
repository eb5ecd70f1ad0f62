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

/// Runs each operation on a copy of the object, with every allocation failing in turn.
template <class Object>
void FailEach(Object const &original, std::vector<std::function<void(Object &)>> const &operations,
              std::function<void(Object &)> const &check)
{
    for (auto const &operation : operations)
    {
        std::optional<Object> object;
        int const failures = failEachAllocation([&] { object.emplace(original); },
                                                [&] { operation(*object); }, [&] { check(*object); });
        EXPECT_GE(failures, 1);
    }
}

} // namespace

TEST(FormatAllocationFailure, FormatsStayAsTheyWere)
{
    using Format = TFormatStringCore;
    TStringCore const longText(LongUtf8);
    FailEach<Format>(Format(u"%1 is text that is kept, and so is %2").arg(u"this", u"that"),
                     {
                         [&](Format &f) { f.arg(longText, 100); },
                         [&](Format &f) { f.arg(longText, longText, LongUtf8); },
                         [&](Format &f) { f.arg(std::vector<TStringCore>(3, longText)); },
                         [](Format &f) { f.arg(1.0, 0, 'f', 50); },
                         [](Format &f) { f = LongUtf8; },
                         [](Format &f) { f = Format(u"%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1%1").arg(u"x"); },
                         [](Format &f) { (void)f.result(); },
                         [&](Format &)
                         { (void)FormatText("%1 in a text that is too long to be held inline", longText); },
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
    FailEach<Exception>(Exception(TFormatStringCore(u"<%1>").arg(u"x")),
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
    struct Reader
    {
        TScanStringCore scan;
        TStringCore out;
        double number = 77;
        int integer = 77;
    };

    TStringCore const text(u"000000000000000000000000000000000000000042 is the answer");
    FailEach<Reader>(Reader{TScanStringCore(text), u"before"},
                     {
                         [](Reader &r) { r.scan.readString(r.out, -1); },
                         [](Reader &r) { r.scan.readLine(r.out); },
                         [](Reader &r) { r.scan.skip("000000000000000000000000000000000000000042"); },
                         [](Reader &r) { r.scan.readInt(r.integer); },
                         [](Reader &r) { r.scan.readFloat(r.number); },
                     },
                     [](Reader &r)
                     {
                         EXPECT_EQ(r.out, u"before");
                         EXPECT_TRUE(r.scan.index() == 0 && r.integer == 77 && r.number == 77);
                     });
}
