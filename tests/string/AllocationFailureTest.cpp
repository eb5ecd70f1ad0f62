// Makes the n-th allocation of an operation fail, for every n there is: the error is the documented one, and
// the object is as it was.

#include "vansys/TStringCore.h"
#include "vansys/VantrelException.h"
#include "vansys/VantrelOutOfMemoryException.h"
#include "vansys/sha2.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
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
    struct Row
    {
        char const *name;
        std::function<void(TStringCore &)> change;
        std::u16string prefix = {};
    };

    TStringCore const other(OnHeap);
    Row const rows[] = {
        {"append", [&](TStringCore &s) { s.append(other); }},
        {"append itself",
         [](TStringCore &s)
         {
             s.append(s);
             s.append(s);
             s.append(s);
         }},
        {"append unit", [](TStringCore &s) { s.append(u'x'); }},
        {"append UTF-8", [](TStringCore &s) { s.append(Utf8.c_str()); }},
        {"append wide", [](TStringCore &s) { s.append(Wide.c_str()); }},
        {"assign", [&](TStringCore &s) { s.assign(other.constData(), other.length()); }},
        {"assign from itself", [](TStringCore &s) { s.assign(s.constData() + 1, 5); }},
        {"assign UTF-8", [](TStringCore &s) { s = Utf8.c_str(); }},
        {"assign wide", [](TStringCore &s) { s = Wide.c_str(); }},
        {"assign wide unit", [](TStringCore &s) { s.fill(WidePair, 30); }},
        {"fill", [](TStringCore &s) { s.fill(u'x', 100); }},
        {"resize", [](TStringCore &s) { s.resize(100); }},
        {"truncate", [](TStringCore &s) { s.truncate(3); }},
        {"chop", [](TStringCore &s) { s.chop(3); }},
        {"reserve", [](TStringCore &s) { s.reserve(100); }},
        {"squeeze", [](TStringCore &s) { s.squeeze(); }},
        {"prepend mark", [](TStringCore &s) { s.prependBOM(); }},
        {"remove mark", [](TStringCore &s) { s.removeBOM(); }, u"\uFEFF"},
        {"data", [](TStringCore &s) { s.data(); }},
        {"index", [](TStringCore &s) { s[0] = u'x'; }},
        {"insert", [&](TStringCore &s) { s.insert(3, other); }},
        {"insert part of itself", [](TStringCore &s) { s.insert(3, s.constData() + 1); }},
        {"insert UTF-8", [](TStringCore &s) { s.insert(3, Utf8.c_str()); }},
        {"remove", [](TStringCore &s) { s.removeAt(3, 2); }},
        {"remove matches", [](TStringCore &s) { s.removeAll(u"t"); }},
        {"remove any", [](TStringCore &s) { s.removeAnyOf(u"te"); }},
        {"replace by position", [&](TStringCore &s) { s.replace(3, 2, other); }},
        {"replace, growing", [&](TStringCore &s) { s.replace(u"t", other); }},
        {"replace, shrinking", [](TStringCore &s) { s.replace(u"te", u"t"); }, u"te"},
        {"replace by itself", [](TStringCore &s) { s.replace(u"t", s); }},
        {"replace itself", [](TStringCore &s) { s.replace(s, u"t"); }},
        {"replace many", [](TStringCore &s) { s.replace(u"x", u"yz"); }, std::u16string(1000, u'x')},
        {"replace any", [](TStringCore &s) { s.replaceAnyOf(u"te", u'x'); }},
        {"reverse", [](TStringCore &s) { s.reverse(); }},
        {"trim", [](TStringCore &s) { s.trim(u" aefs"); }, u" "},
        {"line ends of Unix", [](TStringCore &s) { s.dosToUnix(); }, u"\r"},
        {"line ends of DOS", [](TStringCore &s) { s.unixToDos(); }, u"\r"},
    };
    int failures = 0;
    for (Row const &row : rows)
    {
        for (std::u16string const *content : {&Inline, &OnHeap})
        {
            for (bool const shared : {false, true})
            {
                SCOPED_TRACE(testing::Message()
                             << row.name << ", " << content->size() << " units, shared " << shared);
                std::u16string const expected = row.prefix + *content;
                TStringCore text;
                TStringCore copy;
                int capacity = 0;
                auto const prepare = [&]
                {
                    copy.clear();
                    text = TStringCore(expected);
                    if (shared)
                        copy = text;
                    capacity = text.capacity();
                };
                auto const check = [&]
                {
                    // "append itself" appends thrice: whatever went through before the failure stays.
                    std::u16string const actual = text.toStdUString();
                    EXPECT_EQ(actual.substr(0, expected.size()), expected);
                    EXPECT_EQ(actual.size() % expected.size(), 0u);
                    if (std::string(row.name) != "append itself")
                    {
                        EXPECT_EQ(actual, expected);
                        EXPECT_EQ(text.capacity(), capacity);
                    }
                    if (shared)
                    {
                        EXPECT_EQ(copy.toStdUString(), expected);
                    }
                };
                failures += failEachAllocation(
                    prepare, [&] { row.change(text); }, check);
            }
        }
    }
    EXPECT_GE(failures, 120) << "the failures must reach the library";
}

TEST(AllocationFailure, CuttingNothingOffTakesNoMemory)
{
    TStringCore text(OnHeap);
    text.clear();
    TStringCore const copy(text); // shares the block
    ASSERT_GT(text.capacity(), 15);
    auto const cut = [&]
    {
        for (int const count : {-1, 0, 1})
        {
            text.truncate(count);
            text.chop(count);
        }
    };
    EXPECT_EQ(failEachAllocation([] {}, cut, [] {}), 0);
    EXPECT_EQ(text.constData(), copy.constData());
}

TEST(AllocationFailure, ConstructorsAndConversionsReleaseWhatTheyBuilt)
{
    std::vector<unsigned int> const codePoints(40, 0x1F600);
    TStringCore const text(OnHeap);
    TStringCore const commas(u',', 300);
    TStringCore const sharp(u'\u00DF', 40); // twice as long in upper case
    std::vector<TStringCore> const parts{text, text};
    std::function<void()> const operations[] = {
        [] { TStringCore const built(OnHeap); },
        [] { TStringCore const built(Utf8.c_str()); },
        [] { TStringCore const built(Wide.c_str()); },
        [] { TStringCore const built(u'x', 40); },
        [] { TStringCore const built(WidePair, 40); },
        [] { TStringCore::fromLatin9(Utf8.c_str()); },
        [&] { TStringCore::fromUtf32(codePoints.data(), 40); },
        [&] { (void)text.toStdString(); },
        [&] { (void)text.toStdWString(); },
        [&] { (void)text.toWCharVector(); },
        [&] { (void)text.toLatin1(); },
        [&] { (void)text.split(u"i"); },
        [&] { (void)commas.split(u','); },
        [&] { (void)commas.splitOnAny(u",;"); },
        [&] { (void)commas.section(u",", 0); },
        [&] { (void)TStringCore::split(Wide.c_str(), -1, L"r", -1); },
        [&] { (void)TStringCore::join(parts, u","); },
        [&] { (void)text.mid(1); },
        [&] { (void)text.reversed(); },
        [&] { (void)text.repeated(2); },
        [&] { (void)text.leftJustified(50); },
        [&] { (void)text.rightJustified(50); },
        [&] { (void)text.toUpper(); },
        [&] { (void)sharp.toUpper(); },
        [&] { std::unique_ptr<TStringCore::Exception>(TStringCore::Exception(text).Clone()); },
        [&] { VantrelException const built(text); },
        [&] { VantrelOutOfMemoryException const built; },
        [&] { std::unique_ptr<VantrelException>(VantrelException(text).Clone()); },
        [&] { sha2().GetHash(sha2::SHA_TYPE(3), reinterpret_cast<unsigned char const *>("abc"), 3); },
    };
    for (auto const &operation : operations)
        EXPECT_GE(failEachAllocation([] {}, operation, [] {}), 1);
}

TEST(AllocationFailure, ExceptionsKeepTheirMessages)
{
    std::function<void(VantrelException &)> const operations[] = {
        [](VantrelException &e) { e.StackMessage(Utf8.c_str()); },
        [](VantrelException &e) { e.StackMessageFront(Utf8.c_str()); },
        [](VantrelException &e) { e.SetMessage(Utf8.c_str()); },
        [](VantrelException &e) {
            e = VantrelException(std::list<TStringCore>{u"a", u"b"});
        },
        [](VantrelException &e) { (void)e.GetConcatenatedMessages(); },
        [](VantrelException &e) { (void)e.GetMessagesVector(); },
    };
    for (auto const &operation : operations)
    {
        std::optional<VantrelException> exception;
        int const failures = failEachAllocation(
            [&] {
                exception.emplace(std::list<TStringCore>{TStringCore(OnHeap), u"context"});
            },
            [&] { operation(*exception); },
            [&]
            {
                EXPECT_EQ(exception->GetMessages(),
                          (std::list<TStringCore>{TStringCore(OnHeap), u"context"}));
                EXPECT_TRUE(exception->GetRedactedMessages().empty());
            });
        EXPECT_GE(failures, 1);
    }
}
