#include "main/vansys/string/TextSearch.h"
#include "support/TestText.h"

#include <gtest/gtest.h>

#include <string>

using namespace vansys::detail;

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
            std::u16string source = random.text(isPeriodic ? 5 : 200);
            if (isPeriodic)
            {
                for (source += u'b'; source.size() < 300;)
                    source += source;
                source[static_cast<std::size_t>(random.number(0, 299))] = u'c';
            }
            auto const cut = static_cast<std::size_t>(random.number(0, static_cast<int>(source.size())));
            std::u16string const sought =
                isPeriodic ? source.substr(cut, 100) + random.text(1) + u"b" : random.text(15) + u"ba";
            source.erase(0, static_cast<std::size_t>(random.number(0, 16)));
            ExactUnits const text(source);
            ExactUnits const needle(sought);
            TCodeUnit const *const end = text.data() + text.count();
            auto const place = [&](std::size_t found)
            { return found == source.npos ? nullptr : text.data() + found; };
            ASSERT_EQ(searches.findUnit(text.data(), end, u'a'), place(source.find(u'a')));
            if (needle.count() > text.count())
                continue;
            for (auto const find : {FindExactlyTwoWay<Direction::Forwards>, searches.findFirst})
                ASSERT_EQ(find(text.data(), end, needle.data(), needle.count()), place(source.find(sought)));
            for (auto const find : {FindExactlyTwoWay<Direction::Backwards>, searches.findLast})
                ASSERT_EQ(find(text.data(), end, needle.data(), needle.count()), place(source.rfind(sought)));
        }
    }
}
