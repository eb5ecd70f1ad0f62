#include "support/ReferenceText.h"
#include "support/TestText.h"
#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

using namespace std::string_view_literals;

namespace
{

constexpr int MaxInt = std::numeric_limits<int>::max();
constexpr int MinInt = std::numeric_limits<int>::min();
constexpr auto AnyCase = TStringCore::CaseInsensitive;
using S = TStringCore;

enum Storage
{
    Inline,
    Heap,
    Shared,
};

/// A string in the storage that is asked for, given that it fits inline. `other` is the one that shares it.
TStringCore StringIn(Storage storage, TStringCore text, TStringCore &other)
{
    if (storage != Inline)
        text.reserve(40);
    other = storage == Shared ? text : TStringCore();
    return text;
}

struct Row
{
    std::u16string_view text;
    void (*change)(TStringCore &);
    std::u16string_view expected;
};

/// Every row in every kind of storage: a string keeps the block that it has to itself, the other string keeps
/// its text, and a string that does not change goes on sharing.
void CheckRows(std::vector<Row> const &rows)
{
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        for (Storage const storage : {Inline, Heap, Shared})
        {
            SCOPED_TRACE(testing::Message() << "row " << i << ", storage " << storage);
            TStringCore const before(rows[i].text), after(rows[i].expected);
            TStringCore other;
            TStringCore string = StringIn(storage, before, other);
            TCodeUnit const *const block = string.constData();
            rows[i].change(string);
            EXPECT_EQ(string, after);
            EXPECT_EQ(string.constData()[string.length()], 0);
            EXPECT_TRUE(storage != Heap || (string.constData() == block && string.capacity() == 41));
            EXPECT_EQ(other, storage == Shared ? before : TStringCore());
            EXPECT_EQ(string.constData() == other.constData(), storage == Shared && before == after);
        }
    }
}

} // namespace

TEST(TStringCoreEdit, InEveryStorage)
{
    auto const abc = u"abcdef"sv;
    auto const twice = u"abcabc"sv;
    auto const blanks = u" \t\u3000a b\u00A0\r\n"sv;
    CheckRows({
        {abc, [](S &s) { s.setNum(-1234567890123456789LL); }, u"-1234567890123456789"},
        {abc, [](S &s) { s.setNum(true).append(u",").append(TStringCore().setNum('A', 16)); }, u"1,41"},
        {abc, [](S &s) { s.setNum(0.5, 'f', 20); }, u"0.50000000000000000000"},
        {abc, [](S &s) { s.insert(MinInt, L"XY").insert(MaxInt, "X\xC3\xA9"); }, u"XYabcdefX\u00E9"},
        {abc, [](S &s) { s.insert(0, s.constData() + 6).replace(2, 0, nullptr); }, abc},
        {abc, [](S &s) { s.prepend(u'x').push_front('y').push_front(L'z'); }, u"zyxabcdef"},
        {abc, [](S &s) { s.removeAt(1).removeAt(-1, 2).removeAt(MaxInt, MaxInt); }, u"def"},
        {abc, [](S &s) { s.replace(MinInt, MaxInt, 'x').replace(1, 4, u"y"); }, u"xy"},
        {twice, [](S &s) { s.replace(u"c", u"longer text"); }, u"ablonger textablonger text"},
        {twice, [](S &s) { s.replace(u'A', u'x', AnyCase).replace(u"BC", u"bcd", AnyCase); }, u"xbcdxbcd"},
        {twice, [](S &s) { s.replace(s.constData() + 4, s.constData() + 3).replace(s, u"x"); }, u"x"},
        {twice, [](S &s) { s.replace(u"B", u"x").replace(u"", u"x").replace(nullptr, s); }, twice},
        {twice, [](S &s) { s.removeAll("BC", AnyCase).removeAll(u'a').removeAll(nullptr); }, u""},
        {twice, [](S &s) { s.removeAnyOf(u"ab", 3); }, u"abcc"},
        {twice, [](S &s) { s.removeAnyOf(s.constData() + 4, -7); }, u"aa"},
        {twice, [](S &s) { s.removeAnyOf(u"x").removeAnyOf(u"a", MaxInt).removeAnyOf(nullptr); }, twice},
        {twice, [](S &s) { s.replaceAnyOf(u"x", u'y').replaceAnyOf(s, u'-', 1); }, u"a-----"},
        {u"ab\0c\0"sv, [](S &s) { s.truncateAtFirstNull(); }, u"ab"},
        {twice, [](S &s) { s.truncateAtFirstNull(), s.chop(MinInt), s.truncate(MaxInt); }, twice},
        {u"abc", [](S &s) { s.reverse(); }, u"cba"},
        {blanks, [](S &s) { s.trim(); }, u"a b"},
        {blanks, [](S &s) { s.trimLeft(); }, u"a b\u00A0\r\n"},
        {twice, [](S &s) { s.trim(u"ca").trimLeft('b').trimRight(L"bc"); }, u"ca"},
        {twice, [](S &s) { s.trimRight(s.constData() + 4); }, u"abca"},
        {twice, [](S &s) { s.trim().trim(u"b").trim(nullptr).trimLeft(u"").trimRight(u' '); }, twice},
        {u"a\r\nb\n\r\r", [](S &s) { s.dosToUnix(); }, u"a\nb\n"},
        {u"a\nb\n", [](S &s) { s.dosToUnix(); }, u"a\nb\n"},
        {u"a\r\rb", [](S &s) { s.unixToDos(); }, u"a\r\nb"},
        {u"a\r\nb\r\n", [](S &s) { s.toNativeLineEndings(); }, u"a\r\nb\r\n"},
    });
}

TEST(TStringCoreEdit, AgreesWithTheReference)
{
    RandomText random(u"aAb,");
    for (int round = 0; round < 20000; ++round)
    {
        // Some have more matches than are remembered without touching the heap.
        std::u16string const text = random.text(round % 50 == 0 ? 1000 : 14);
        std::u16string const before = random.text(3);
        int const size = static_cast<int>(text.size());
        int const position = random.number(-1, size + 1), count = random.number(-1, size + 1);
        auto const storage = static_cast<Storage>(random.number(Inline, Shared));
        bool const folds = random.number(0, 1) == 1;
        SCOPED_TRACE(testing::Message() << "round " << round << ", storage " << storage);
        auto const fold = folds ? reference::FoldAscii : reference::KeepCase;
        auto const sensitivity = folds ? TStringCore::CaseInsensitive : TStringCore::CaseSensitive;

        TStringCore other;
        TStringCore string = StringIn(storage, TStringCore(text), other);
        // Every other text is part of the string itself.
        bool const own = random.number(0, 1) == 1;
        int const place = random.number(0, size);
        std::u16string const after = own ? text.substr(static_cast<std::size_t>(place)) : random.text(5);
        TStringCore const outside(after);
        TCodeUnit const *const argument = own ? string.constData() + place : outside.constData();

        std::u16string expected = text;
        auto const from = static_cast<std::size_t>(std::clamp(position, 0, size));
        switch (random.number(0, 2))
        {
        case 0:
            expected.replace(from, count < 0 ? std::u16string::npos : static_cast<std::size_t>(count), after);
            string.replace(position, count, argument);
            break;
        case 1:
            expected = reference::Replace(text, before, after, fold);
            ASSERT_EQ(string.replaceCount(TStringCore(before), argument, sensitivity),
                      reference::Count(text, before, fold));
            break;
        default:
            expected = reference::Replace(text, after, u"", fold);
            string.removeAll(argument, sensitivity);
        }
        ASSERT_EQ(string, TStringCore(expected));
        ASSERT_EQ(other, storage == Shared ? TStringCore(text) : TStringCore());
    }
}

TEST(TStringCoreEdit, ConvertsLineEnds)
{
    struct
    {
        TStringCore text, unixText, dosText;
    } const rows[] = {{u"", u"", u""},
                      {u"a\nb\n", u"a\nb\n", u"a\r\nb\r\n"},
                      {u"a\r\r", u"a\n", u"a\r\n"}, // as long as before
                      {u"\n\r\n", u"\n\n", u"\r\n\r\n"},
                      {u"\r\n\ra", u"\n\na", u"\r\n\r\na"},
                      {u"\n\n\r\r\nb", u"\n\n\nb", u"\r\n\r\n\r\nb"},
                      {u"\r\r\r\n\n", u"\n\n", u"\r\n\r\n"}};
    for (auto const &[text, unixText, dosText] : rows)
    {
        EXPECT_EQ(TStringCore(text).dosToUnix(), unixText);
        EXPECT_EQ(TStringCore(text).unixToDos(), dosText);
        std::vector<TWideTwin> twin = TwinElements(text);
        EXPECT_EQ(TStringCore::dosToUnix(twin.data()), unixText.length());
        EXPECT_EQ(TStringCore(twin.data()), unixText);
    }
    EXPECT_EQ(TStringCore::dosToUnix(static_cast<TCodeUnit *>(nullptr)), 0);
}

TEST(TStringCoreEdit, FailuresLeaveTheText)
{
    TStringCore const long70000(u'a', 70000);
    TStringCore text = long70000;
    std::vector<TStringCore> const parts(70000, long70000);
    EXPECT_THROW(text.replace(u"a", long70000), TStringCore::Exception);
    EXPECT_THROW((void)text.repeated(70000), TStringCore::Exception);
    EXPECT_THROW((void)TStringCore::join(parts, nullptr), TStringCore::Exception);
    EXPECT_THROW(text.setNum(7, 37), TStringCore::Exception);
    EXPECT_EQ(text.constData(), long70000.constData());
}
