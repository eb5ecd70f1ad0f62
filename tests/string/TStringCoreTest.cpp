#include "vansys/TStringCore.h"

#include "support/FailureMessage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <compare>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

using namespace std::string_literals;

namespace
{

TStringCore const Short = u"fourteen units";
TStringCore const Long = u"a text that is too long to be held inline";

/// A code point that takes two units, where `wchar_t` can hold it.
constexpr auto WidePair = static_cast<wchar_t>(0x1F600);

/// Operations with what the exception says that each throws.
using Failures = std::vector<std::pair<std::function<void()>, char const *>>;

void expectFailures(Failures const &failures)
{
    for (auto const &[operation, message] : failures)
        EXPECT_EQ(StringFailureMessage(operation), message);
}

/// A deep copy, which shares nothing with the string.
TStringCore unsharedCopy(TStringCore const &text)
{
    return TStringCore(text.constData(), text.length());
}

} // namespace

TEST(TStringCore, FourteenUnitsAreInlineAndGrowthGoesByPowersOfTwo)
{
    // Each length is that of the same string, after the one before.
    std::pair<int, int> const capacities[] = {{0, 15},   {14, 15},     {15, 32},    {31, 32}, {32, 64},
                                              {63, 64},  {64, 128},    {100, 128},  {3, 128}, {128, 256},
                                              {-5, 256}, {1000, 1024}, {1024, 2048}};
    TStringCore text;
    for (auto const &[length, capacity] : capacities)
    {
        text.resize(length);
        EXPECT_EQ(text.capacity(), capacity) << length;
        EXPECT_EQ(text.length(), std::max(length, 0));
        EXPECT_EQ(text.constData()[text.length()], 0);
    }
    EXPECT_EQ(TStringCore(u'x', 20).capacity(), 32);
    EXPECT_EQ(TStringCore(u'x', 100).capacity(), 128);
}

TEST(TStringCore, ReserveAndSqueeze)
{
    int const rows[][4] = {{3, 0, 15, 15},   {3, 14, 15, 15},  {3, 15, 32, 15},
                           {3, 31, 32, 15},  {3, 32, 33, 15},  {3, 100, 101, 15},
                           {15, 20, 32, 16}, {40, 10, 64, 41}, {40, 64, 65, 41}};
    for (auto const &[length, reserved, capacity, squeezed] : rows)
    {
        for (bool const shared : {false, true})
        {
            SCOPED_TRACE(testing::Message() << length << ", " << reserved << ", shared " << shared);
            TStringCore const expected(u'x', length);
            TStringCore text = unsharedCopy(expected);
            TStringCore const copy = shared ? text : TStringCore();
            text.reserve(reserved);
            EXPECT_EQ(text.capacity(), capacity);
            EXPECT_EQ(text, expected);
            EXPECT_EQ(text.constData()[length], 0);
            if (length >= 15)
            {
                EXPECT_NE(text.constData(), copy.constData());
            }
            TCodeUnit const *const before = text.constData();
            text.reserve(reserved);
            EXPECT_EQ(text.constData(), before) << "nothing to do any more";
            text.squeeze();
            EXPECT_EQ(text.capacity(), squeezed);
            EXPECT_EQ(text, expected);
        }
    }
}

TEST(TStringCore, CopiesShareUntilOneIsWritten)
{
    TStringCore const original = unsharedCopy(Long);
    TStringCore copy = original;
    copy.append("").append(u"").append(TStringCore()).truncate(500);
    copy.removeBOM();
    EXPECT_EQ(copy.constData(), original.constData()) << "nothing was written";
    copy[0] = u'A';
    EXPECT_NE(copy.constData(), original.constData());
    EXPECT_EQ(copy.capacity(), original.capacity());
    TCodeUnit const *const own = copy.constData();
    copy[1] = u'B';
    EXPECT_EQ(copy.constData(), own) << "a block with one owner is written in place";
    EXPECT_EQ(original, Long);
}

TEST(TStringCore, AssignmentKeepsReleasesOrSharesTheBlock)
{
    TStringCore target = unsharedCopy(Long);
    TStringCore const &sameTarget = target;
    TCodeUnit const *const block = target.constData();
    target = Short; // an unshared block is kept for an inline text,
    target = sameTarget;
    EXPECT_EQ(target, Short);
    EXPECT_EQ(target.capacity(), 64);
    EXPECT_EQ(target.constData()[14], 0);
    target.clear();
    EXPECT_EQ(target.constData(), block) << "and for none";

    TStringCore shared = unsharedCopy(Long);
    TStringCore const other = shared;
    shared = Short;
    EXPECT_EQ(shared.capacity(), 15) << "a shared block is let go";
    shared = other;
    EXPECT_EQ(shared.constData(), other.constData());
    TStringCore const &sameShared = shared;
    shared = sameShared;
    EXPECT_EQ(shared, Long);
    EXPECT_EQ(other, Long);
}

TEST(TStringCore, MovedFromIsEmptyAndInline)
{
    auto const isEmptyAndInline = [](TStringCore const &text)
    { return text.isEmpty() && text.capacity() == 15 && text.constData()[0] == 0; };
    for (TStringCore const &content : {Short, Long})
    {
        TStringCore source = unsharedCopy(content);
        TStringCore target = std::move(source);
        EXPECT_EQ(target, content);
        EXPECT_TRUE(isEmptyAndInline(source));
        TStringCore assigned = unsharedCopy(Long);
        assigned = std::move(target);
        EXPECT_TRUE(isEmptyAndInline(target));
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
        std::function<std::u16string(std::u16string)> expected;
        std::vector<std::function<void(TStringCore &)>> changes;
    };

    auto const narrow = [](TStringCore &s) { return reinterpret_cast<char const *>(s.constData()); };
    auto const null = []<class Unit>(Unit) { return static_cast<Unit const *>(nullptr); };
    std::u16string const text = u"0123456789abcdef0123456789abcdef";
    Row const rows[] = {
        {[](auto t) { return t; },
         {[](auto &s) { s.append(s.cend(), 5); }, [&](auto &s) { s.append(null('x')).append(null(u'x')); },
          [](auto &s) { s.truncate(500); }, [](auto &s) { s.chop(-1); },
          [](auto &s) { s.prependBOM(), s.removeBOM(), s.removeBOM(); }}},
        {[](auto) { return u""s; },
         {[](auto &s) { s = nullptr; }, [](auto &s) { s = {}; }, [](auto &s) { s.clear(); },
          [&](auto &s) { s.assign(null('x')); }, [&](auto &s) { s.assign(null(u'x')); },
          [&](auto &s) { s.assign(null(L'x')); }, [](auto &s) { s.fill(u'x', -1); },
          [](auto &s) { s.truncate(-1); }, [](auto &s) { s.chop(500); }}},
        {[&](auto t) { return t + text; }, {[&](auto &s) { s.append(TStringCore(text)); }}},
        {[](auto t) { return t + t; }, {[](auto &s) { s.append(s); }}},
        {[](auto t) { return t + t.substr(2); }, {[](auto &s) { s.append(s.constData() + 2, 1000); }}},
        {[](auto t) { return t + t.substr(1, 2); }, {[](auto &s) { s.append(s.constData() + 1, 2); }}},
        {[](auto t) { return t + char16_t(t[0] & 0x7F) + u'\0' + char16_t(t[1] & 0x7F); },
         {[&](auto &s) { s.append(narrow(s), 3); }}},
        {[](auto t) { return t + u"\u00e9\u20ac"; },
         {[](auto &s) { s += "\xC3\xA9\xE2\x82\xAC"; }, [](auto &s) { s.append('\xE9').append(L'\x20AC'); },
          [](auto &s) { s.append(L"\u00e9\u20ac"); }}},
        {[](auto t) { return t + std::u16string(40, u'-'); },
         {[](auto &s) { std::fill_n(std::back_inserter(s), 40, u'-'); }}},
        {[](auto t) { return t.substr(3, 4); }, {[](auto &s) { s.assign(s.constData() + 3, 4); }}},
        {[](auto t) { return t.substr(3); }, {[](auto &s) { s.assign(s.constData() + 3); }}},
        {[](auto t) {
             return std::u16string{t[0], u'\0', t[1]};
         },
         {[&](auto &s) { s.assign(narrow(s), 3); }}},
        {[&](auto) { return text; }, {[&](auto &s) { s = text.c_str(); }}},
        {[](auto) { return u"\u00e9\u20ac"s; },
         {[](auto &s) { s = "\xC3\xA9\xE2\x82\xAC"; }, [](auto &s) { s = L"\u00e9\u20ac"; }}},
        {[](auto) { return u"x"s; }, {[](auto &s) { s = u'x'; }}},
        {[](auto) { return std::u16string(50, u'x'); }, {[](auto &s) { s.fill(u'x', 50); }}},
        {[](auto t) { return t + std::u16string(40, u'\0'); }, {[](auto &s) { s.resize(s.length() + 40); }}},
        {[](auto t) { return t.substr(0, 2); },
         {[](auto &s) { s.resize(2); }, [](auto &s) { s.truncate(2); }}},
        {[](auto t) { return t.substr(0, t.size() - 2); }, {[](auto &s) { s.chop(2); }}},
        {[](auto t) { return u"\ufeff"s + t; },
         {[](auto &s) { s.prependBOM(); }, [](auto &s) { s.prependBOM(), s.prependBOM(), s.removeBOM(); }}},
        {[](auto t) { return std::u16string(1, u'(').append(t, 1, t.size() - 3) + u'.' + u')'; },
         {[](auto &s) { s[0] = u'<', s.front() = u'(', s.back() = u')', *(s.rbegin() + 1) = u'.'; }}},
        {[](auto t) { return std::u16string(t.size(), u'-'); },
         {[](auto &s) { std::fill(s.begin(), s.end(), u'-'); }}},
    };
    for (Row const &row : rows)
    {
        for (std::size_t i = 0; i < 4 * row.changes.size(); ++i)
        {
            std::u16string const content = (i % 2 ? Short : Long).toStdUString();
            bool const shared = i / 2 % 2;
            TStringCore changed(content);
            TStringCore const copy = shared ? changed : TStringCore(content);
            row.changes[i / 4](changed);
            EXPECT_EQ(changed.toStdUString(), row.expected(content))
                << "row " << &row - rows << ", change " << i / 4 << ", shared " << shared;
            EXPECT_EQ(changed.constData()[changed.length()], 0);
            EXPECT_EQ(copy.toStdUString(), content);
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

    for (int const outside : {-1, 4})
        expectFailures(
            {{[&] { text.at(outside); }, "TStringCore::at(int): argument out of range."},
             {[&] { text[outside] = 0; }, "TStringCore::operator[int] argument out of range."},
             {[&] { (void)constant[outside]; }, "TStringCore::operator[int] const argument out of range."}});
    for (unsigned long long const outside : {4ull, (1ull << 32) + 1})
        expectFailures(
            {{[&] { text[outside] = 0; }, "TStringCore::operator[size_type] argument out of range."},
             {[&] { (void)constant[outside]; },
              "TStringCore::operator[size_type] const argument out of range."}});
    expectFailures(
        {{[&] { text[(1LL << 32) + 1] = 0; }, "TStringCore::operator[int] argument out of range."}});
    EXPECT_EQ(text, u"abc");
}

TEST(TStringCore, ImpossibleSizesThrowAndLeaveTheText)
{
    constexpr int Max = std::numeric_limits<int>::max();
    char const *const overflow = "Allocation size less than zero; probable overflow";
    for (TStringCore const &content : {Short, Long})
    {
        TStringCore text = unsharedCopy(content);
        expectFailures({{[&] { text.reserve(-1); }, "Negative allocation size; probable overflow"},
                        {[&] { text.reserve(Max); }, overflow},
                        {[&] { text.resize(Max); }, overflow},
                        {[&] { text.resize(1 << 30); }, overflow},
                        {[&] { text.fill(u'x', Max); }, overflow},
                        {[&] { text.fill(WidePair, Max); }, overflow},
                        {[&] { text.append(u"x", Max); }, overflow},
                        {[&] { text.append("x", Max - 14); }, overflow}});
        EXPECT_EQ(text, content);
    }
}

TEST(TStringCore, CharactersAndPointersOfEveryType)
{
    EXPECT_EQ(TStringCore('\xE9', 1), u"\u00e9");
    EXPECT_EQ(TStringCore(u'x', -3), u"");
    EXPECT_EQ(TStringCore(WidePair, 2), sizeof(wchar_t) == 4 ? u"\U0001F600\U0001F600" : u"\uF600\uF600");
    EXPECT_EQ(TStringCore(u8"\u20ac"), u"\u20ac");
    EXPECT_EQ(TStringCore(u"abc", 0), u"");
    EXPECT_TRUE(TStringCore(u"\ufeff").hasBOM() && !TStringCore().hasBOM());
    EXPECT_TRUE(TStringCore(nullptr).isEmpty());
    EXPECT_TRUE(TStringCore(static_cast<char const *>(nullptr), 5).isEmpty());
    std::u16string_view const view = TStringCore(u"a\0b", 3);
    EXPECT_EQ(view.size(), 3u);
    EXPECT_EQ(static_cast<std::u16string_view>(Short), u"fourteen units");
    static_assert(!std::is_convertible_v<std::u16string_view, TStringCore>);
    static_assert(!std::is_constructible_v<bool, TStringCore>);
    static_assert(std::is_nothrow_copy_constructible_v<TStringCore> &&
                  std::is_nothrow_move_assignable_v<TStringCore>);
}

TEST(TStringCore, ComparesByCodeUnitOverTheWholeText)
{
    TStringCore const ascending[] = {u"",  TStringCore(u'\0', 1), u"A",     TStringCore(u"A\0B", 3), u"B",
                                     u"a", u"\U0001F600",         u"\uFFFD"};
    for (TStringCore const &a : ascending)
    {
        for (TStringCore const &b : ascending)
        {
            EXPECT_EQ(a == b, &a == &b) << testing::PrintToString(a) << testing::PrintToString(b);
            EXPECT_EQ(a != b, &a != &b);
            EXPECT_EQ(a < b, &a < &b);
            EXPECT_EQ(a <= b, &a <= &b);
            EXPECT_EQ(a > b, &a > &b);
            EXPECT_EQ(a >= b, &a >= &b);
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
    // Pairs and containers ask for the three-way operator, which exists for pointers, too.
    auto const order = std::pair(unsharedCopy(Long), 1) <=> std::pair(unsharedCopy(Long), 1);
    EXPECT_TRUE(order == std::strong_ordering::equal);
    EXPECT_TRUE((TStringCore(u"a") <=> u"b") < 0);
    EXPECT_TRUE(("b" <=> TStringCore(u"a")) > 0);
}

TEST(TStringCore, HashFollowsEquality)
{
    std::hash<TStringCore> const hash;
    TStringCore onHeap = unsharedCopy(Long);
    onHeap = u"key";
    EXPECT_EQ(hash(onHeap), hash(u"key"));
    std::set<std::size_t> distinct;
    for (int i = 0; i < 1000; ++i)
        distinct.insert(hash(TStringCore(static_cast<TCodeUnit>(i), 1 + i % 3)));
    EXPECT_EQ(distinct.size(), 1000u);
}

TEST(TStringCore, ExceptionIsAString)
{
    TStringCore::Exception const exception(Long);
    EXPECT_EQ(exception.GetConcatenatedMessages().constData(), Long.constData());
    std::unique_ptr<TStringCore::Exception> const clone(exception.Clone());
    EXPECT_EQ(clone->CollateMessagesForLog(), Long);
    EXPECT_EQ(StringFailureMessage([&] { clone->Throw(); }), Long);
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
    std::jthread const first(work, u'1');
    work(u'2');
    EXPECT_EQ(shared, Long);
}
