#include "main/platform/CpuFeatures.h"
#include "main/vansys/string/TextSearch.h"
#include "support/TestText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using namespace vansys::detail;

// The string takes the fastest search there is; the others are reached here only.
TEST(TextSearchInternal, EverySearchAgreesWithThePortableOne)
{
    TextSearches const portable = PortableTextSearches();
    for (CpuFeatures const features : {CpuFeatures(), DetectCpuFeatures()})
    {
        TextSearches const searches = FastestTextSearches(features);
        RandomText random(u"abbbbbbb");
        for (int round = 0; round < 20000; ++round)
        {
            SCOPED_TRACE(testing::Message() << "round " << round << ", AVX2 " << features.avx2);
            ExactUnits const text(random.text(200));
            ExactUnits const needle(random.text(15).append(u"ba"));
            TCodeUnit const *const begin = text.data() + random.number(0, std::min(text.count(), 16));
            TCodeUnit const *const end = text.data() + text.count();
            ASSERT_EQ(searches.findUnit(begin, end, u'a'), portable.findUnit(begin, end, u'a'));
            if (needle.count() <= end - begin)
            {
                ASSERT_EQ(searches.findText(begin, end, needle.data(), needle.count()),
                          portable.findText(begin, end, needle.data(), needle.count()));
            }
        }
    }
}
