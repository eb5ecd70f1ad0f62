// Makes the n-th allocation of an operation fail, for every n there is: the error is the documented one, and
// the object is as it was.

#include "vansys/TStringCore.h"
#include "vansys/VantrelException.h"
#include "vansys/VantrelOutOfMemoryException.h"
#include "vansys/sha2.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace
{

std::u16string const Inline = u"fourteen units";
std::u16string const OnHeap = u"a text that is too long to be held inline";
std::string const Utf8 = "thirty-two bytes of narrow text \xE2\x82\xAC";
std::wstring const Wide = L"thirty-two elements of wide text";
constexpr auto WidePair = static_cast<wchar_t>(0x1F600); // two units, where `wchar_t` can hold it

} // namespace

TEST(AllocationFailure, MutatorsLeaveTheTextAsItWas)
{
    TStringCore const other(OnHeap);
    // What is put before the content, and what is done with that then.
    std::pair<std::u16string, std::vector<std::function<void(TStringCore &)>>> const rows[] = {
        {u"",
         {[&](auto &s) { s.append(other); }, [](auto &s) { s.append(u'x'); },
          [](auto &s) { s.append(Utf8.c_str()); }, [](auto &s) { s.append(Wide.c_str()); }}},
        {u"",
         {[&](auto &s) { s.assign(other.constData(), other.length()); },
          [](auto &s) { s.assign(s.constData() + 1, 5); }, [](auto &s) { s = Utf8.c_str(); },
          [](auto &s) { s = Wide.c_str(); }, [](auto &s) { s.fill(WidePair, 30); },
          [](auto &s) { s.fill(u'x', 100); }}},
        {u"",
         {[](auto &s) { s.resize(100); }, [](auto &s) { s.truncate(3); }, [](auto &s) { s.chop(3); },
          [](auto &s) { s.reserve(100); }, [](auto &s) { s.squeeze(); }, [](auto &s) { s.prependBOM(); },
          [](auto &s) { s.data(); }, [](auto &s) { s[0] = u'x'; }}},
        {u"",
         {[&](auto &s) { s.insert(3, other); }, [](auto &s) { s.insert(3, s.constData() + 1); },
          [](auto &s) { s.insert(3, Utf8.c_str()); }, [](auto &s) { s.removeAt(3, 2); },
          [](auto &s) { s.removeAll(u"t"); }, [](auto &s) { s.removeAnyOf(u"te"); }}},
        {u"",
         {[&](auto &s) { s.replace(3, 2, other); }, [&](auto &s) { s.replace(u"t", other); },
          [](auto &s) { s.replace(u"t", s); }, [](auto &s) { s.replace(s, u"t"); },
          [](auto &s) { s.replaceAnyOf(u"te", u'x'); }, [](auto &s) { s.reverse(); }}},
        {std::u16string(100, u'x'), {[](auto &s) { s.append(s); }}},
        {u"\uFEFF", {[](auto &s) { s.removeBOM(); }}},
        {u"te", {[](auto &s) { s.replace(u"te", u"t"); }}},
        {std::u16string(1000, u'x'), {[](auto &s) { s.replace(u"x", u"yz"); }}},
        {u" ", {[](auto &s) { s.trim(u" aefs"); }}},
        {u"\r", {[](auto &s) { s.dosToUnix(); }, [](auto &s) { s.unixToDos(); }}},
    };
    int failures = 0;
    for (auto const &[prefix, changes] : rows)
    {
        for (std::size_t i = 0; i < 4 * changes.size(); ++i)
        {
            bool const shared = i % 2;
            SCOPED_TRACE(testing::Message() << "prefix " << testing::PrintToString(prefix) << ", change "
                                            << i / 4 << ", storage " << i % 4);
            std::u16string const expected = prefix + (i / 2 % 2 ? OnHeap : Inline);
            TStringCore text;
            TStringCore copy;
            int capacity = 0;
            auto const prepare = [&]
            {
                copy.clear();
                text = TStringCore(expected);
                capacity = text.capacity();
                if (shared)
                    copy = text;
            };
            auto const check = [&]
            {
                EXPECT_EQ(text.toStdUString(), expected);
                EXPECT_EQ(text.capacity(), capacity);
                EXPECT_EQ(copy.toStdUString(), shared ? expected : u"");
            };
            auto const &perform = changes[i / 4];
            auto const change = [&] { perform(text); };
            failures += failEachAllocation(prepare, change, check);
        }
    }
    EXPECT_GE(failures, 110) << "the failures must reach the library";
}

TEST(AllocationFailure, CuttingNothingOffTakesNoMemory)
{
    TStringCore text(OnHeap);
    text.clear();
    TStringCore const copy(text); // shares the block
    ASSERT_GT(text.capacity(), 15);
    for (int const count : {-1, 0, 1})
        EXPECT_EQ(failEachAllocation([] {}, [&] { text.truncate(count), text.chop(count); }, [] {}), 0);
    EXPECT_EQ(text.constData(), copy.constData());
}

TEST(AllocationFailure, ConstructorsAndConversionsReleaseWhatTheyBuilt)
{
    std::vector<unsigned int> const codePoints(40, 0x1F600);
    TStringCore const text(OnHeap);
    TStringCore const commas(u',', 300);
    TStringCore const sharp(u'\u00DF', 40); // twice as long in upper case
    std::vector<TStringCore> const parts{text, text};
    std::vector<std::function<void()>> const operations[] = {
        {[] { TStringCore const built(OnHeap); }, [] { TStringCore const built(Utf8.c_str()); },
         [] { TStringCore const built(Wide.c_str()); }, [] { TStringCore const built(u'x', 40); },
         [] { TStringCore const built(WidePair, 40); }},
        {[] { TStringCore::fromLatin9(Utf8.c_str()); },
         [&] { TStringCore::fromUtf32(codePoints.data(), 40); }, [&] { (void)text.toStdString(); },
         [&] { (void)text.toStdWString(); }, [&] { (void)text.toWCharVector(); },
         [&] { (void)text.toLatin1(); }},
        {[&] { (void)text.split(u"i"); }, [&] { (void)commas.split(u','); },
         [&] { (void)commas.splitOnAny(u",;"); }, [&] { (void)commas.section(u",", 0); },
         [&] { (void)TStringCore::split(Wide.c_str(), -1, L"r", -1); },
         [&] { (void)TStringCore::join(parts, u","); }},
        {[&] { (void)text.mid(1); }, [&] { (void)text.reversed(); }, [&] { (void)text.repeated(2); },
         [&] { (void)text.leftJustified(50); }, [&] { (void)text.rightJustified(50); },
         [&] { (void)text.toUpper(); }, [&] { (void)sharp.toUpper(); }},
        {[&] { std::unique_ptr<TStringCore::Exception>(TStringCore::Exception(text).Clone()); },
         [&] { VantrelException const built(text); }, [&] { VantrelOutOfMemoryException const built; },
         [&] { std::unique_ptr<VantrelException>(VantrelException(text).Clone()); },
         [&] { sha2().GetHash(sha2::SHA_TYPE(3), reinterpret_cast<unsigned char const *>("abc"), 3); }}};
    for (auto const &kind : operations)
    {
        for (auto const &operation : kind)
            EXPECT_GE(failEachAllocation([] {}, operation, [] {}), 1);
    }
}

TEST(AllocationFailure, ExceptionsKeepTheirMessages)
{
    std::list<TStringCore> const messages{TStringCore(OnHeap), u"context"};
    std::function<void(VantrelException &)> const operations[] = {
        [](auto &e) { e.StackMessage(Utf8.c_str()); },
        [](auto &e) { e.StackMessageFront(Utf8.c_str()); },
        [](auto &e) { e.SetMessage(Utf8.c_str()); },
        [](auto &e) { (void)e.GetConcatenatedMessages(); },
        [](auto &e) { (void)e.GetMessagesVector(); },
        [](auto &e) { e = VantrelException(std::list<TStringCore>(2, u"a")); },
    };
    for (auto const &operation : operations)
    {
        std::optional<VantrelException> exception;
        auto const check = [&]
        {
            EXPECT_EQ(exception->GetMessages(), messages);
            EXPECT_TRUE(exception->GetRedactedMessages().empty());
        };
        auto const prepare = [&] { exception.emplace(messages); };
        auto const operate = [&] { operation(*exception); };
        EXPECT_GE(failEachAllocation(prepare, operate, check), 1);
    }
}
