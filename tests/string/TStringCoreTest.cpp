#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <compare>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

using namespace std::string_literals;

namespace
{

TStringCore const Short = u"fourteen units";
TStringCore const Long = u"a text that is too long to be held inline";

/// A code point that takes two units, where `wchar_t` can hold it.
constexpr auto WidePair = static_cast<wchar_t>(0x1F600);

template <class Function>
std::string messageOf(Function const &function)
{
    try
    {
        function();
    }
    catch (TStringCore::Exception const &exception)
    {
        return exception.GetConcatenatedMessages().toStdString();
    }
    return "nothing was thrown";
}

/// A deep copy, which shares nothing with the string.
TStringCore unsharedCopy(TStringCore const &text)
{
    return TStringCore(text.constData(), text.length());
}

} // namespace

TEST(TStringCore, FourteenUnitsAreInlineAndGrowthGoesByPowersOfTwo)
{
    TStringCore text;
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text.capacity(), 15);

    struct Step
    {
        int length;
        int capacity;
    };

    // Each row continues with the string of the row before.
    for (Step const step : {Step{14, 15},
                            {15, 32},
                            {31, 32},
                            {32, 64},
                            {63, 64},
                            {64, 128},
                            {100, 128},
                            {3, 128},
                            {128, 256},
                            {1000, 1024},
                            {1024, 2048},
                            {-5, 2048}})
    {
        text.resize(step.length);
        EXPECT_EQ(text.capacity(), step.capacity) << step.length;
        EXPECT_EQ(text.length(), std::max(step.length, 0));
        EXPECT_EQ(text.constData()[text.length()], 0);
    }
    EXPECT_EQ(TStringCore(u'x', 20).capacity(), 32);
    EXPECT_EQ(TStringCore(u'x', 100).capacity(), 128);
}

TEST(TStringCore, ReserveAndSqueeze)
{
    struct Row
    {
        int length, reserved, capacity, squeezed;
    };

    for (Row const row : {Row{3, 0, 15, 15},
                          {3, 14, 15, 15},
                          {3, 15, 32, 15},
                          {3, 31, 32, 15},
                          {3, 32, 33, 15},
                          {3, 100, 101, 15},
                          {15, 20, 32, 16},
                          {40, 10, 64, 41},
                          {40, 64, 65, 41}})
    {
        for (bool const shared : {false, true})
        {
            SCOPED_TRACE(testing::Message()
                         << row.length << " units, " << row.reserved << " reserved, shared " << shared);
            TStringCore text(u'x', row.length);
            TStringCore const copy = shared ? text : TStringCore();
            text.reserve(row.reserved);
            EXPECT_EQ(text.capacity(), row.capacity);
            EXPECT_EQ(text, TStringCore(u'x', row.length));
            EXPECT_EQ(text.constData()[row.length], 0);
            if (row.length >= 15)
            {
                EXPECT_NE(text.constData(), copy.constData());
            }
            TCodeUnit const *const before = text.constData();
            text.reserve(row.reserved);
            EXPECT_EQ(text.constData(), before) << "nothing to do any more";
            text.squeeze();
            EXPECT_EQ(text.capacity(), row.squeezed);
            EXPECT_EQ(text, TStringCore(u'x', row.length));
        }
    }
}

TEST(TStringCore, CopiesShareUntilOneIsWritten)
{
    TStringCore const original = unsharedCopy(Long);
    TStringCore copy = original;
    EXPECT_EQ(copy.constData(), original.constData());
    copy.append("").append(u"").append(TStringCore()).truncate(500);
    copy.removeBOM();
    EXPECT_EQ(copy.constData(), original.constData()) << "nothing was written";
    copy[0] = u'A';
    EXPECT_NE(copy.constData(), original.constData());
    EXPECT_EQ(copy.capacity(), original.capacity());
    EXPECT_EQ(original, Long);
    TCodeUnit const *const own = copy.constData();
    copy[1] = u'B';
    EXPECT_EQ(copy.constData(), own) << "a block with one owner is written in place";
}

TEST(TStringCore, AssignmentKeepsReleasesOrSharesTheBlock)
{
    TStringCore target = unsharedCopy(Long);
    TCodeUnit const *const block = target.constData();
    target = Short;
    EXPECT_EQ(target, Short);
    EXPECT_EQ(target.constData(), block) << "an unshared block is kept for an inline text";
    EXPECT_EQ(target.capacity(), 64);
    EXPECT_EQ(target.constData()[14], 0);
    TStringCore const &sameTarget = target;
    target = sameTarget;
    EXPECT_EQ(target.constData(), block) << "the only owner is assigned to itself";
    target.clear();
    EXPECT_EQ(target.constData(), block) << "clearing keeps it, too";
    target = Short;

    {
        TStringCore const other = target;
        target = TStringCore(u"x").assign(Short); // an inline copy
        TStringCore const inlineText = Short;
        target = inlineText;
    }
    EXPECT_EQ(target, Short);

    TStringCore shared = unsharedCopy(Long);
    TStringCore const other = shared;
    TStringCore const inlineText = u"x";
    shared = inlineText;
    EXPECT_EQ(shared.capacity(), 15) << "a shared block is let go";
    EXPECT_EQ(other, Long);

    shared = other;
    EXPECT_EQ(shared.constData(), other.constData());
    TStringCore const &self = shared;
    shared = self;
    EXPECT_EQ(shared, Long);
}

TEST(TStringCore, MovedFromIsEmptyAndInline)
{
    for (TStringCore const &content : {Short, Long})
    {
        TStringCore source = unsharedCopy(content);
        TStringCore target = std::move(source);
        EXPECT_EQ(target, content);
        EXPECT_TRUE(source.isEmpty());
        EXPECT_EQ(source.capacity(), 15);
        EXPECT_EQ(source.constData()[0], 0);
        TStringCore assigned = unsharedCopy(Long);
        assigned = std::move(target);
        EXPECT_EQ(assigned, content);
        EXPECT_EQ(target.capacity(), 15);
        EXPECT_EQ(target.constData()[0], 0);
        TStringCore &same = assigned;
        assigned = std::move(same);
        EXPECT_EQ(assigned, content);
        swap(assigned, target);
        EXPECT_EQ(target, content);
        EXPECT_TRUE(assigned.isEmpty());
    }
}

// Everything that changes a string, on every kind of storage: the result is right, is terminated, and a copy
// that was made before does not see it.
TEST(TStringCore, MutatorsOnInlineUnsharedAndSharedText)
{
    struct Row
    {
        char const *name;
        std::function<void(TStringCore &)> change;
        std::function<std::u16string(std::u16string)> expected;
    };

    std::u16string const addition = u"0123456789abcdef0123456789abcdef";
    std::vector<Row> const rows = {
        {"append string", [&](TStringCore &s) { s.append(TStringCore(addition)); },
         [&](auto t) { return t + addition; }},
        {"append itself", [](TStringCore &s) { s.append(s); }, [](auto t) { return t + t; }},
        {"append from itself", [](TStringCore &s) { s.append(s.constData() + 2, 1000); },
         [](auto t) { return t + t.substr(2); }},
        {"append a part of itself", [](TStringCore &s) { s.append(s.constData() + 1, 2); },
         [](auto t) { return t + t.substr(1, 2); }},
        {"append its terminator", [](TStringCore &s) { s.append(s.cend(), 5); }, [](auto t) { return t; }},
        {"append its own bytes as narrow text",
         [](TStringCore &s) { s.append(reinterpret_cast<char const *>(s.constData()), 3); },
         [](auto t) { return t + char16_t(t[0] & 0x7F) + u'\0' + char16_t(t[1] & 0x7F); }},
        {"append UTF-8", [](TStringCore &s) { s += "\xC3\xA9\xE2\x82\xAC"; },
         [](auto t) { return t + u"\u00e9\u20ac"; }},
        {"append null",
         [](TStringCore &s)
         { s.append(static_cast<char const *>(nullptr)).append(static_cast<char16_t const *>(nullptr)); },
         [](auto t) { return t; }},
        {"append units",
         [](TStringCore &s)
         {
             for (int i = 0; i < 40; ++i)
                 s.push_back(u'-');
         },
         [](auto t) { return t + std::u16string(40, u'-'); }},
        {"append byte and wide", [](TStringCore &s) { s.append('\xE9').append(L'\x20AC').append(L"wide"); },
         [](auto t) { return t + u"\u00e9\u20acwide"; }},
        {"assign a part of itself", [](TStringCore &s) { s.assign(s.constData() + 3, 4); },
         [](auto t) { return t.substr(3, 4); }},
        {"assign its tail", [](TStringCore &s) { s.assign(s.constData() + 3); },
         [](auto t) { return t.substr(3); }},
        {"assign text", [&](TStringCore &s) { s = addition.c_str(); }, [&](auto) { return addition; }},
        {"assign UTF-8", [](TStringCore &s) { s = "UTF-8 \xE2\x82\xAC"; },
         [](auto) { return u"UTF-8 \u20ac"s; }},
        {"assign wide", [](TStringCore &s) { s = L"wide"; }, [](auto) { return u"wide"s; }},
        {"assign its own bytes as narrow text",
         [](TStringCore &s) { s.assign(reinterpret_cast<char const *>(s.constData()), 3); },
         [](auto t) {
             return std::u16string{t[0], u'\0', t[1]};
         }},
        {"assign null", [](TStringCore &s) { s = nullptr; }, [](auto) { return u""s; }},
        {"assign null UTF-8", [](TStringCore &s) { s.assign(static_cast<char const *>(nullptr)); },
         [](auto) { return u""s; }},
        {"assign null text", [](TStringCore &s) { s.assign(static_cast<char16_t const *>(nullptr)); },
         [](auto) { return u""s; }},
        {"assign null wide", [](TStringCore &s) { s.assign(static_cast<wchar_t const *>(nullptr)); },
         [](auto) { return u""s; }},
        {"assign unit", [](TStringCore &s) { s = u'x'; }, [](auto) { return u"x"s; }},
        {"assign braces", [](TStringCore &s) { s = {}; }, [](auto) { return u""s; }},
        {"fill", [](TStringCore &s) { s.fill(u'x', 50); }, [](auto) { return std::u16string(50, u'x'); }},
        {"fill negative", [](TStringCore &s) { s.fill(u'x', -1); }, [](auto) { return u""s; }},
        {"clear", [](TStringCore &s) { s.clear(); }, [](auto) { return u""s; }},
        {"resize up", [](TStringCore &s) { s.resize(s.length() + 40); },
         [](auto t) { return t + std::u16string(40, u'\0'); }},
        {"resize down", [](TStringCore &s) { s.resize(2); }, [](auto t) { return t.substr(0, 2); }},
        {"truncate", [](TStringCore &s) { s.truncate(5); }, [](auto t) { return t.substr(0, 5); }},
        {"truncate beyond", [](TStringCore &s) { s.truncate(500); }, [](auto t) { return t; }},
        {"truncate negative", [](TStringCore &s) { s.truncate(-1); }, [](auto) { return u""s; }},
        {"chop", [](TStringCore &s) { s.chop(2); }, [](auto t) { return t.substr(0, t.size() - 2); }},
        {"chop all", [](TStringCore &s) { s.chop(500); }, [](auto) { return u""s; }},
        {"chop negative", [](TStringCore &s) { s.chop(-1); }, [](auto t) { return t; }},
        {"prepend mark", [](TStringCore &s) { s.prependBOM(); }, [](auto t) { return u"\ufeff" + t; }},
        {"remove mark",
         [](TStringCore &s)
         {
             s.prependBOM();
             s.removeBOM();
             s.removeBOM();
         },
         [](auto t) { return t; }},
        {"write units",
         [](TStringCore &s)
         {
             s[0] = u'<';
             s.front() = u'(';
             s.back() = u')';
             *(s.rbegin() + 1) = u'.';
         },
         [](auto t)
         {
             t.front() = u'(';
             t.back() = u')';
             t[t.size() - 2] = u'.';
             return t;
         }},
        {"write by iterator",
         [](TStringCore &s)
         {
             for (TCodeUnit &unit : s)
                 unit = u'-';
         },
         [](auto t) { return std::u16string(t.size(), u'-'); }},
    };
    for (Row const &row : rows)
    {
        for (std::u16string const &content :
             {u"fourteen units"s, u"a text that is too long to be held inline"s})
        {
            for (bool const shared : {false, true})
            {
                SCOPED_TRACE(testing::Message()
                             << row.name << ", " << content.size() << " units, shared " << shared);
                TStringCore text(content);
                TStringCore const copy = shared ? text : TStringCore(content);
                row.change(text);
                EXPECT_EQ(text.toStdUString(), row.expected(content));
                EXPECT_EQ(text.constData()[text.length()], 0);
                EXPECT_EQ(copy.toStdUString(), content);
            }
        }
    }
}

TEST(TStringCore, UncountedTextFromItselfEndsAtAZeroUnit)
{
    for (std::u16string const &tail : {u"c"s, std::u16string(40, u'c')})
    {
        TStringCore text(u"ab\0"s + tail);
        text.append(text.constData() + 1);
        EXPECT_EQ(text.toStdUString(), u"ab\0"s + tail + u"b");
        text.assign(text.constData() + 1);
        EXPECT_EQ(text, u"b");
    }
}

TEST(TStringCore, IndexingReachesTheTerminatorAndNoFurther)
{
    TStringCore text = u"abc";
    TStringCore const &constant = text;
    EXPECT_EQ(text.at(3), 0);
    EXPECT_EQ(constant[2L], u'c');
    EXPECT_EQ(text[std::size_t{1}], u'b');
    EXPECT_EQ(constant[static_cast<short>(0)], u'a');
    text[3u] = u'!';
    EXPECT_EQ(constant[3LL], u'!');
    text[3] = 0;
    TStringCore nothing;
    EXPECT_EQ(&nothing.back(), nothing.constData());
    EXPECT_EQ(&nothing.front(), nothing.constData());

    long long const wrapsToOne = (1LL << 32) + 1;

    struct Row
    {
        std::function<void()> access;
        char const *message;
    };

    for (Row const &row :
         {Row{[&] { text.at(4); }, "TStringCore::at(int): argument out of range."},
          {[&] { text.at(-1); }, "TStringCore::at(int): argument out of range."},
          {[&] { text[4] = 0; }, "TStringCore::operator[int] argument out of range."},
          {[&] { text[-1] = 0; }, "TStringCore::operator[int] argument out of range."},
          {[&] { text[wrapsToOne] = 0; }, "TStringCore::operator[int] argument out of range."},
          {[&] { (void)constant[-1]; }, "TStringCore::operator[int] const argument out of range."},
          {[&] { text[4u] = 0; }, "TStringCore::operator[size_type] argument out of range."},
          {[&] { (void)constant[4u]; }, "TStringCore::operator[size_type] const argument out of range."},
          {[&] { (void)constant[static_cast<unsigned long long>(wrapsToOne)]; },
           "TStringCore::operator[size_type] const argument out of range."}})
        EXPECT_EQ(messageOf(row.access), row.message);
    EXPECT_EQ(text, u"abc");
}

TEST(TStringCore, ImpossibleSizesThrowAndLeaveTheText)
{
    constexpr int Max = std::numeric_limits<int>::max();
    char const *const overflow = "Allocation size less than zero; probable overflow";
    for (TStringCore const &content : {Short, Long})
    {
        TStringCore text = unsharedCopy(content);

        struct Row
        {
            std::function<void()> grow;
            char const *message;
        };

        for (Row const &row : {Row{[&] { text.reserve(-1); }, "Negative allocation size; probable overflow"},
                               {[&] { text.reserve(Max); }, overflow},
                               {[&] { text.resize(Max); }, overflow},
                               {[&] { text.resize(1 << 30); }, overflow},
                               {[&] { text.fill(u'x', Max); }, overflow},
                               {[&] { text.fill(WidePair, Max); }, overflow},
                               {[&] { text.append(u"x", Max); }, overflow},
                               {[&] { text.append("x", Max - 14); }, overflow}})
            EXPECT_EQ(messageOf(row.grow), row.message);
        EXPECT_EQ(text, content);
    }
}

TEST(TStringCore, CharactersAndPointersOfEveryType)
{
    EXPECT_EQ(TStringCore('\xE9', 1), u"\u00e9");
    EXPECT_EQ(TStringCore(u'x', -3), u"");
    EXPECT_EQ(TStringCore(WidePair, 2), sizeof(wchar_t) == 4 ? u"\U0001F600\U0001F600" : u"\uF600\uF600");
    EXPECT_EQ(TStringCore(u8"\u20ac"), u"\u20ac");
    EXPECT_EQ(TStringCore(u"a\0b", 3).length(), 3);
    EXPECT_EQ(TStringCore(u"abc", 0), u"");
    EXPECT_TRUE(TStringCore(nullptr).isEmpty());
    EXPECT_TRUE(TStringCore(static_cast<char const *>(nullptr), 5).isEmpty());

    std::u16string_view const view = TStringCore(u"a\0b", 3);
    EXPECT_EQ(view.size(), 3u);
    EXPECT_EQ(TStringCore(std::u16string_view(u"a\0b", 3)).length(), 3);
    EXPECT_EQ(static_cast<std::u16string_view>(Short), u"fourteen units");
    static_assert(!std::is_convertible_v<std::u16string_view, TStringCore>);
    static_assert(!std::is_constructible_v<bool, TStringCore>);
    static_assert(std::is_nothrow_copy_constructible_v<TStringCore> &&
                  std::is_nothrow_move_assignable_v<TStringCore>);
}

TEST(TStringCore, ComparesByCodeUnitOverTheWholeText)
{
    std::vector<TStringCore> const ascending = {
        u"", TStringCore(u'\0', 1), u"A", TStringCore(u"A\0B", 3), u"B", u"a", u"\U0001F600", u"\uFFFD"};
    for (std::size_t i = 0; i < ascending.size(); ++i)
    {
        for (std::size_t k = 0; k < ascending.size(); ++k)
        {
            TStringCore const &a = ascending[i];
            TStringCore const &b = ascending[k];
            EXPECT_EQ(a == b, i == k) << testing::PrintToString(a) << testing::PrintToString(b);
            EXPECT_EQ(a != b, i != k);
            EXPECT_EQ(a < b, i < k);
            EXPECT_EQ(a <= b, i <= k);
            EXPECT_EQ(a > b, i > k);
            EXPECT_EQ(a >= b, i >= k);
        }
    }
    TStringCore const text = u"b";
    auto const liesBetween = [&](auto const *lower, auto const *same, auto const *higher)
    {
        return lower < text && lower <= text && lower != text && text > lower && text >= lower &&
               same == text && text == same && same <= text && text <= same && same >= text && text >= same &&
               higher > text && higher >= text && text != higher && text < higher && text <= higher &&
               !(same != text || text != same || same < text || text < same || same > text || text > same);
    };
    EXPECT_TRUE(liesBetween("a", "b", "c"));
    EXPECT_TRUE(liesBetween(u"a", u"b", u"c"));
    EXPECT_TRUE(liesBetween(L"a", L"b", L"c"));
    EXPECT_TRUE(TStringCore() == static_cast<TCodeUnit const *>(nullptr));
}

// Pairs and containers ask for the three-way operator, which exists for pointers, too.
TEST(TStringCore, PairsCompareTheirTextsNotTheirAddresses)
{
    auto const order = std::pair(unsharedCopy(Long), 1) <=> std::pair(unsharedCopy(Long), 1);
    EXPECT_TRUE(order == std::strong_ordering::equal);
    EXPECT_TRUE((TStringCore(u"a") <=> u"b") < 0);
    EXPECT_TRUE(("b" <=> TStringCore(u"a")) > 0);
}

TEST(TStringCore, HashFollowsEquality)
{
    TStringCore onHeap = unsharedCopy(Long);
    onHeap = u"key";
    EXPECT_EQ(std::hash<TStringCore>()(onHeap), std::hash<TStringCore>()(u"key"));
    std::unordered_set<TStringCore> hashes;
    std::set<std::size_t> distinct;
    for (int i = 0; i < 1000; ++i)
    {
        TStringCore const text(static_cast<TCodeUnit>(i), 1 + i % 3);
        hashes.insert(text);
        distinct.insert(std::hash<TStringCore>()(text));
    }
    EXPECT_EQ(hashes.size(), 1000u);
    EXPECT_EQ(distinct.size(), 1000u);
}

TEST(TStringCore, PrintsReadably)
{
    EXPECT_EQ(testing::PrintToString(TStringCore(u"a\"\\\n\u20ac\0", 6)), R"(u"a\"\\\u000A\u20AC\u0000")");
}

TEST(TStringCore, ExceptionIsAString)
{
    TStringCore::Exception const exception(Long);
    EXPECT_EQ(exception.GetConcatenatedMessages().constData(), Long.constData());
    std::unique_ptr<TStringCore::Exception> const clone(exception.Clone());
    EXPECT_EQ(clone->CollateMessagesForLog(), Long);
    EXPECT_EQ(messageOf([&] { clone->Throw(); }), Long.toStdString());
}

// Copies of one block are made, written and dropped on two threads; the sanitizers watch.
TEST(TStringCore, ThreadsShareABlock)
{
    TStringCore const shared = unsharedCopy(Long);
    auto const work = [copy = shared](TCodeUnit mark)
    {
        for (int i = 0; i < 20000; ++i)
        {
            TStringCore own = copy;
            own[i % own.length()] = mark;
            TStringCore const another = own;
            own.append(mark);
            ASSERT_EQ(another.length() + 1, own.length());
        }
    };
    std::thread first(work, u'1');
    std::thread second(work, u'2');
    first.join();
    second.join();
    EXPECT_EQ(shared, Long);
}
