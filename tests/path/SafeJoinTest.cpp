// SafeJoin lets nothing out of the base, on any system.
#include "vansys/TPathCore.h"

#include "path/HostileNames.h"
#include "support/FailureMessage.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string_view>
#include <vector>

using Path = TPathCore;

namespace
{

TStringCore Refusal(Path const &base, TStringCore const &untrusted)
{
    return FailureMessage<Path::Exception>([&] { static_cast<void>(Path::SafeJoin(base, untrusted)); });
}

} // namespace

TEST(SafeJoin, RefusesHostileNames)
{
    int count = 0;
    VisitHostileNames(
        [&count](HostileNames const &group)
        {
            for (std::u16string_view const text : group.texts)
            {
                TStringCore const untrusted(text);
                EXPECT_EQ(Refusal(u"C:/base", untrusted), TStringCore("SafeJoin: ").append(group.reason))
                    << testing::PrintToString(untrusted);
                // In the generic form it is as hostile, though not for the same reason in each case.
                EXPECT_NE(Refusal(u"", Path(untrusted).GenericString()), u"")
                    << testing::PrintToString(untrusted);
                ++count;
            }
        });
    EXPECT_GE(count, 80);
}

// Each row is a base, a name, and both joined.
TEST(SafeJoin, JoinsWhatStaysWithin)
{
    for (
        TStringCore const row :
        {u"C:/base|a\\b//c/|C:/base/a/b/c", u"C:/base||C:/base", u"/|a|/a", u"|a|a", u"C:|a|C:a",
         u"C:/|a|C:/a", u"//srv|share|//srv/share", u"//?/C:/|a|//?/C:/a", u"a:b/..|.c|a:b/../.c",
         u"d|..a/a..b/.profile/con1/nul1.x/COM/com10/LPTx/xcon/a.nul/~/\u00E9?*|d/..a/a..b/.profile/con1/nul1.x/COM/com10/LPTx/xcon/a.nul/~/\u00E9?*"})
    {
        std::vector<TStringCore> const parts = row.split(u'|');
        EXPECT_EQ(Path::SafeJoin(parts[0], parts[1]).GenericString(), parts[2]);
    }
    EXPECT_EQ(Refusal(Path(u"/") + Path(u"/"), u"srv"), u"SafeJoin: the base is not a folder.");
    EXPECT_EQ(Refusal(u"//?", u"UNC/srv"), u"SafeJoin: the base is not a folder.");
    EXPECT_EQ(Refusal(u"//?", u"x"), u"SafeJoin: the base is not a folder.");
}

// Whatever is not refused is below the base, and has no other parts than the text.
TEST(SafeJoin, LetsNothingOut)
{
    constexpr char16_t Units[] = u"aC.:/\\ ?$nul1\u00B9\xDC2E\xDC5C";
    std::minstd_rand random(1);
    int accepted = 0;
    for (int i = 0; i < 50'000; ++i)
    {
        TStringCore untrusted;
        for (auto length = random() % 8; length > 0; --length)
            untrusted.append(Units[random() % (std::size(Units) - 1)]);
        for (TStringCore const base : {u"/b", u"C:", u"//srv/s", u"../b"})
        {
            try
            {
                Path const joined = Path::SafeJoin(base, untrusted);
                ++accepted;
                EXPECT_TRUE(joined.IsUnder(base, TStringCore::CaseSensitive))
                    << testing::PrintToString(base) << testing::PrintToString(untrusted);
                EXPECT_EQ(joined.LexicallyNormal().size(),
                          Path(base).LexicallyNormal().size() + Path(untrusted).LexicallyNormal().size())
                    << testing::PrintToString(base) << testing::PrintToString(untrusted);
            }
            catch (Path::Exception const &)
            {
            }
        }
    }
    EXPECT_GT(accepted, 5'000);
}
