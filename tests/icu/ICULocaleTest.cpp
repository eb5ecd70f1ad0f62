#include "vansys/ICULocale.h"

#include "icu/Families.h"
#include "support/Latch.h"

#include <set>
#include <sstream>
#include <thread>

using namespace VanICU;

VANSYS_FAMILY_TEST(ICULocaleTest);

TEST_P(ICULocaleTest, IsMadeOfPartsOrOfAName)
{
    std::pair<std::unique_ptr<ICULocale>, std::string> const rows[] = {
        {ICULocale::createInstance("de", "AT"), "de_AT de_AT de  AT  deu AUT c07"},
        {ICULocale::createInstance("sv", "SE", "POSIX", "collation=standard"),
         "sv_SE_POSIX@collation=standard sv_SE_POSIX sv  SE POSIX swe SWE 41d"},
        {ICULocale::createFromName("zh-hant-TW@collation=stroke"),
         "zh_Hant_TW@collation=stroke zh_Hant_TW zh Hant TW  zho TWN 20404"},
        {ICULocale::getRoot(), "        0"},
        {ICULocale::createInstance(""), "        0"},
    };
    for (auto const &[locale, expected] : rows)
    {
        std::ostringstream parts;
        for (auto const part : {&ICULocale::getName, &ICULocale::getBaseName, &ICULocale::getLanguage,
                                &ICULocale::getScript, &ICULocale::getCountry, &ICULocale::getVariant,
                                &ICULocale::getISO3Language, &ICULocale::getISO3Country})
            parts << ((*locale).*part)() << ' ';
        parts << std::hex << locale->getLCID();
        EXPECT_EQ(parts.str(), expected);
        EXPECT_FALSE(locale->isBogus());
    }
    EXPECT_TRUE(ICULocale::createInstance("a language with far too long a name")->isBogus());
}

TEST_P(ICULocaleTest, TellsItsNameInALanguage)
{
    auto const austria = ICULocale::createFromName("de_AT");
    auto const french = ICULocale::createFromName("fr");
    EXPECT_EQ(austria->getDisplayName(*french), "allemand (Autriche)");
    EXPECT_EQ(austria->getDisplayLanguage(*french), "allemand");
    EXPECT_EQ(austria->getDisplayCountry(*french), "Autriche");

    auto const before = ICULocale::getDefault();
    ICULocale::setDefault(*ICULocale::createFromName("sv_SE"), m_status);
    EXPECT_EQ(austria->getDisplayName(), "tyska (\u00D6sterrike)");
    EXPECT_EQ(austria->getDisplayLanguage(), "tyska");
    EXPECT_EQ(austria->getDisplayCountry(), "\u00D6sterrike");
    for (auto const &locale :
         {ICULocale::getDefault(), ICULocale::createInstance(), ICULocale::createFromName(nullptr)})
        EXPECT_STREQ(locale->getName(), "sv_SE");
    ICULocale::setDefault(*before, m_status);
    EXPECT_EQ(*ICULocale::getDefault(), *before);
}

TEST_P(ICULocaleTest, CopiesShareWhatTheyWrap)
{
    auto const german = ICULocale::createFromName("de");
    ICULocale copy(*german);
    ICULocale const moved(std::move(copy));
    EXPECT_EQ(moved.getName(), german->getName()) << "the same address";
    EXPECT_EQ(copy.getName(), german->getName()) << "a locale always wraps something";
    copy = *ICULocale::createFromName("fr");
    EXPECT_STREQ(copy.getName(), "fr") << "a copy outlives what it was copied from";
    EXPECT_TRUE(moved == *german && copy != moved);
}

TEST_P(ICULocaleTest, ListsWhatIcuHasDataFor)
{
    int count = -1;
    std::set<std::string> names;
    for (auto const &locale : ICULocale::getAvailableLocales(count))
        names.insert(locale->getName());
    EXPECT_EQ(static_cast<int>(names.size()), count);
    EXPECT_TRUE(names.count("sv_SE") && names.count("zh_Hant_TW")) << count;
}

TEST(ICULocaleFamilies, HaveWellKnownLocalesOfTheirOwn)
{
    std::pair<ICULocale const &(*)(), char const *> const rows[] = {
        {ICULocale::getUS, "en_US"},    {ICULocale::getCanada, "en_CA"},
        {ICULocale::getChina, "zh_CN"}, {ICULocale::getCanadaFrench, "fr_CA"},
        {ICULocale::getPRC, "zh_CN"},   {ICULocale::getJapan, "ja_JP"}};
    std::set<ICULocale const *> objects;
    for (int const version : {4, 5, 0, 4})
    {
        setIcuVersion(version);
        for (auto const &[get, name] : rows)
        {
            EXPECT_STREQ(get().getName(), name);
            objects.insert(&get());
        }
    }
    EXPECT_EQ(objects.size(), 2 * std::size(rows)) << "China and PRC are two, too";
}

TEST(ICULocaleFamilies, ConcurrentCallersGetTheSameObject)
{
    // No test before this one asks for Korea, so these threads make it. The selector is set meanwhile.
    std::vector<ICULocale const *> seen(4);
    Latch start(4);
    {
        std::vector<std::jthread> threads;
        for (ICULocale const *&slot : seen)
            threads.emplace_back(
                [&]
                {
                    start.ArriveAndWait();
                    slot = &ICULocale::getKorea();
                });
        setIcuVersion(4);
    }
    EXPECT_EQ(std::set<ICULocale const *>(seen.begin(), seen.end()).size(), 1u);
    EXPECT_STREQ(seen[0]->getName(), "ko_KR");
}
