// SafeJoin lets nothing out of the base, on any system.
#include "vansys/TPathCore.h"

#include "path/HostileNames.h"
#include "support/FailureMessage.h"
#include "support/TestText.h"

#include <gtest/gtest.h>

using Path = TPathCore;

static TStringCore Refusal(Path const &base, TStringCore const &untrusted)
{
    return FailureMessage<Path::Exception>([&] { static_cast<void>(Path::SafeJoin(base, untrusted)); });
}

TEST(SafeJoin, RefusesHostileNames)
{
    int count = 0;
    VisitHostileNames(
        [&count](char const *reason, TStringCore const &untrusted)
        {
            SCOPED_TRACE(testing::PrintToString(untrusted));
            EXPECT_EQ(Refusal(u"C:/base", untrusted), TStringCore("SafeJoin: ").append(reason));
            // In the generic form it is as hostile, though not for the same reason in each case.
            EXPECT_NE(Refusal(u"", Path(untrusted).GenericString()), u"");
            ++count;
        });
    EXPECT_GE(count, 80);
}

// Each row is a base, a name, and both joined.
TEST(SafeJoin, JoinsWhatStaysWithin)
{
    TStringCore const rows =
        u"C:/base|a\\b//c/|C:/base/a/b/c,C:/base||C:/base,/|a|/a,|a|a,C:|a|C:a,C:/|a|C:/a,"
        u"//srv|share|//srv/share,//?/C:/|a|//?/C:/a,a:b/..|.c|a:b/../.c,"
        u"d|..a/a..b/.profile/con1/nul1.x/COM/com10/LPTx/xcon/a.nul/~/\u00E9?*|"
        u"d/..a/a..b/.profile/con1/nul1.x/COM/com10/LPTx/xcon/a.nul/~/\u00E9?*";
    for (TStringCore const &row : rows.split(u','))
    {
        std::vector<TStringCore> const parts = row.split(u'|');
        EXPECT_EQ(Path::SafeJoin(parts[0], parts[1]).GenericString(), parts[2]);
    }
    for (auto const &[base, name] :
         {std::pair(Path(u"/") + u"/", u"srv"), {u"//?", u"UNC/srv"}, {u"//?", u"x"}})
        EXPECT_EQ(Refusal(base, name), u"SafeJoin: the base is not a folder.");
}

// Whatever is not refused is below the base, and has no other parts than the text.
TEST(SafeJoin, LetsNothingOut)
{
    RandomText random(u"aC.:/\\ ?$nul1\u00B9\xDC2E\xDC5C");
    int accepted = 0;
    for (int i = 0; i < 50'000; ++i)
    {
        TStringCore const untrusted(std::u16string_view(random.text(7)));
        int const size = Path(untrusted).LexicallyNormal().size();
        for (Path const base : {u"/b", u"C:", u"//srv/s", u"../b"})
        {
            if (!Refusal(base, untrusted).isEmpty())
                continue;
            Path const joined = Path::SafeJoin(base, untrusted);
            ++accepted;
            EXPECT_TRUE(joined.IsUnder(base, TStringCore::CaseSensitive) &&
                        joined.LexicallyNormal().size() == base.LexicallyNormal().size() + size)
                << testing::PrintToString(joined.GenericString());
        }
    }
    EXPECT_GT(accepted, 5'000);
}
