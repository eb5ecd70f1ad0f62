#include "main/platform/CpuFeatures.h"
#include "main/vansys/string/TextSearchVector.h"
#include "support/TestText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using namespace vansys::detail;

namespace
{

/// Counts what is looked at besides the vectors of candidates.
struct Counting : SearchExactly
{
    static TCodeUnit Key(TCodeUnit unit) noexcept { return ++s_work, unit; }

    static bool IsSame(TCodeUnit a, TCodeUnit b) noexcept { return ++s_work, a == b; }

    static std::uint32_t Differences(TCodeUnit const *a, TCodeUnit const *b) noexcept
    {
        return ++s_work, Exactly::Differences(a, b);
    }

    static int EqualPrefix(TCodeUnit const *, TCodeUnit const *, int) noexcept { return 0; }

    template <Direction direction>
    static TCodeUnit const *FindTwoWay(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                                       int needleLength) noexcept
    {
        using Text = DirectedText<direction>;
        return TwoWaySearch<direction, Counting>(Text(needle, needle + needleLength)).Find(Text(text, end));
    }

    static inline std::int64_t s_work = 0;
};

std::u16string Repeat(std::u16string const &word, std::size_t length)
{
    std::u16string result;
    while (result.size() < length)
        result += word;
    return result.substr(0, length);
}

/// Words of which each is made of the two before it: they have many periods, none of which lasts.
std::u16string FibonacciWord(std::size_t length)
{
    std::u16string last = u"a";
    std::u16string before = u"b";
    while (last.size() < length)
        before.swap(last += before);
    return last.substr(0, length);
}

} // namespace

// The string takes the fastest search there is; the others are reached here only.
TEST(TextSearchInternal, EverySearchFindsTheFirstPlaceFromItsEnd)
{
    for (CpuFeatures const features : {CpuFeatures(), DetectCpuFeatures()})
    {
        TextSearches const searches = FastestTextSearches(features);
        RandomText random(u"abbbbbbb");
        for (int round = 0; round < 20000; ++round)
        {
            SCOPED_TRACE(testing::Message() << "round " << round << ", AVX2 " << features.avx2);
            bool const isPeriodic = round % 2 != 0;
            std::u16string source = isPeriodic ? Repeat(random.text(5) + u"b", 300) : random.text(200);
            if (isPeriodic)
                source[static_cast<std::size_t>(random.number(0, 299))] = u'c';
            auto const cut = static_cast<std::size_t>(random.number(0, static_cast<int>(source.size())));
            std::u16string const sought =
                isPeriodic ? source.substr(cut, 100) + random.text(1) + u"b" : random.text(15) + u"ba";
            ExactUnits const text(
                source.substr(static_cast<std::size_t>(random.number(0, 16)) % (source.size() + 1)));
            ExactUnits const needle(sought);
            std::u16string const plain(text.data(), text.data() + text.count());
            auto const place = [&](std::size_t found)
            { return found == plain.npos ? nullptr : text.data() + found; };
            TCodeUnit const *const end = text.data() + text.count();
            ASSERT_EQ(searches.findUnit(text.data(), end, u'a'), place(plain.find(u'a')));
            for (auto const find : {FindExactlyTwoWay<Direction::Forwards>, searches.findFirst})
            {
                if (needle.count() <= text.count())
                {
                    ASSERT_EQ(find(text.data(), end, needle.data(), needle.count()),
                              place(plain.find(sought)));
                }
            }
            for (auto const find : {FindExactlyTwoWay<Direction::Backwards>, searches.findLast})
            {
                if (needle.count() <= text.count())
                {
                    ASSERT_EQ(find(text.data(), end, needle.data(), needle.count()),
                              place(plain.rfind(sought)));
                }
            }
        }
    }
}

TEST(TextSearchInternal, WorkIsLinearWhateverTheText)
{
    constexpr std::size_t Length = 6000;
    std::u16string const same = Repeat(u"a", Length);
    std::u16string const half = same.substr(Length / 2);
    std::u16string const pairs = Repeat(u"ab", Length);
    std::u16string const fibonacci = FibonacciWord(Length);
    struct Row
    {
        std::u16string text, needle;
    };
    for (Row const &row : {Row{same, half + u'b'},
                           {same, u'b' + half},
                           {same, half.substr(1000) + u"b" + half.substr(1000)},
                           {same, half},
                           {same, u"aaaa"},
                           {pairs, pairs.substr(Length / 2) + u"aabb"},
                           {pairs, u"bbaa" + pairs.substr(Length / 2)},
                           {pairs, u"aabb" + pairs.substr(Length / 2) + u"ab"},
                           {Repeat(same.substr(0, 60) + u'b', Length), same.substr(0, 61) + u'b'},
                           {Repeat(same.substr(0, 60) + u'b', Length), u'b' + same.substr(0, 61) + u"ba"},
                           {fibonacci, fibonacci.substr(5, Length / 2) + u"bb"},
                           {fibonacci, u"bb" + fibonacci.substr(5, Length / 2)},
                           {fibonacci, fibonacci.substr(5, 30)}})
    {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(row.needle.substr(0, 70)));
        ExactUnits const text(row.text);
        ExactUnits const needle(row.needle);
        auto const forwards = FindByVector<Direction::Forwards, Counting, BytesOfVector>;
        auto const backwards = FindByVector<Direction::Backwards, Counting, BytesOfVector>;
        TCodeUnit const *begin = text.data();
        TCodeUnit const *end = begin + text.count();
        // All matches, one after the other, as counting and splitting look for them.
        Counting::s_work = 0;
        while (end - begin >= needle.count() && (begin = forwards(begin, end, needle.data(), needle.count())))
            begin += needle.count();
        EXPECT_LT(Counting::s_work, 8 * Length);
        begin = text.data();
        Counting::s_work = 0;
        while (end - begin >= needle.count() && (end = backwards(begin, end, needle.data(), needle.count())))
            continue;
        EXPECT_LT(Counting::s_work, 8 * Length);
    }
}
