#include "vansys/ICULocale.h"

#include "icu/Families.h"

#include <latch>
#include <set>
#include <thread>
#include <vector>

using namespace VanICU;

using ICULocaleTest = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICULocaleTest);

TEST_P(ICULocaleTest, IsMadeOfPartsOrOfAName)
{
    struct
    {
        std::unique_ptr<ICULocale> locale;
        char const *name, *baseName, *language, *script, *country, *variant, *iso3Language, *iso3Country;
        unsigned int lcid;
    } const rows[] = {
        {ICULocale::createInstance("de", "AT"), "de_AT", "de_AT", "de", "", "AT", "", "deu", "AUT", 0x0C07},
        {ICULocale::createInstance("sv", "SE", "POSIX", "collation=standard"),
         "sv_SE_POSIX@collation=standard", "sv_SE_POSIX", "sv", "", "SE", "POSIX", "swe", "SWE", 0x041D},
        {ICULocale::createFromName("zh-hant-TW@collation=stroke"), "zh_Hant_TW@collation=stroke",
         "zh_Hant_TW", "zh", "Hant", "TW", "", "zho", "TWN", 0x20404},
        {ICULocale::getRoot(), "", "", "", "", "", "", "", "", 0},
        {ICULocale::createInstance(""), "", "", "", "", "", "", "", "", 0},
    };
    for (auto const &row : rows)
    {
        SCOPED_TRACE(row.name);
        EXPECT_FALSE(row.locale->isBogus());
        EXPECT_STREQ(row.locale->getName(), row.name);
        EXPECT_STREQ(row.locale->getBaseName(), row.baseName);
        EXPECT_STREQ(row.locale->getLanguage(), row.language);
        EXPECT_STREQ(row.locale->getScript(), row.script);
        EXPECT_STREQ(row.locale->getCountry(), row.country);
        EXPECT_STREQ(row.locale->getVariant(), row.variant);
        EXPECT_STREQ(row.locale->getISO3Language(), row.iso3Language);
        EXPECT_STREQ(row.locale->getISO3Country(), row.iso3Country);
        EXPECT_EQ(row.locale->getLCID(), row.lcid);
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
    EXPECT_STREQ(ICULocale::getDefault()->getName(), "sv_SE");
    EXPECT_STREQ(ICULocale::createInstance()->getName(), "sv_SE");
    EXPECT_STREQ(ICULocale::createFromName(nullptr)->getName(), "sv_SE");
    ICULocale::setDefault(*before, m_status);
    EXPECT_EQ(*ICULocale::getDefault(), *before);
    EXPECT_EQ(m_status, U_ZERO_ERROR);
}

TEST_P(ICULocaleTest, CopiesShareWhatTheyWrap)
{
    auto const german = ICULocale::createFromName("de");
    ICULocale copy(*german);
    EXPECT_EQ(copy.getName(), german->getName()) << "the same address";
    ICULocale const moved(std::move(copy));
    EXPECT_EQ(moved.getName(), german->getName());
    EXPECT_EQ(copy.getName(), german->getName()) << "a locale always wraps something";
    copy = *ICULocale::createFromName("fr");
    EXPECT_STREQ(copy.getName(), "fr") << "a copy outlives what it was copied from";
    EXPECT_TRUE(moved == *german && copy != moved);
    EXPECT_EQ(*ICULocale::createFromName("de-DE"), *ICULocale::createInstance("de", "DE"));
}

TEST_P(ICULocaleTest, ListsWhatIcuHasDataFor)
{
    int count = -1;
    auto const locales = ICULocale::getAvailableLocales(count);
    EXPECT_EQ(static_cast<int>(locales.size()), count);
    std::set<std::string> names;
    for (auto const &locale : locales)
        names.insert(locale->getName());
    EXPECT_EQ(names.size(), locales.size());
    EXPECT_TRUE(names.count("sv_SE") && names.count("zh_Hant_TW")) << count;
}

TEST_P(ICULocaleTest, WellKnownLocalesAreOneObjectEach)
{
    struct
    {
        ICULocale const &(*get)();
        char const *name;
    } const rows[] = {
        {ICULocale::getUS, "en_US"},           {ICULocale::getCanada, "en_CA"},
        {ICULocale::getCanadaFrench, "fr_CA"}, {ICULocale::getChina, "zh_CN"},
        {ICULocale::getPRC, "zh_CN"},          {ICULocale::getJapan, "ja_JP"},
        {ICULocale::getKorea, "ko_KR"},
    };
    std::set<ICULocale const *> objects;
    for (auto const &row : rows)
    {
        ICULocale const &locale = row.get();
        EXPECT_STREQ(locale.getName(), row.name);
        EXPECT_EQ(&row.get(), &locale) << row.name;
        objects.insert(&locale);
    }
    EXPECT_EQ(objects.size(), std::size(rows)) << "China and PRC are two, too";
}

TEST(ICULocaleFamilies, HaveObjectsOfTheirOwn)
{
    ICULocale const *const first = &ICULocale::getJapan();
    setIcuVersion(5);
    ICULocale const *const other = &ICULocale::getJapan();
    EXPECT_NE(first, other);
    EXPECT_EQ(*first, *other) << "of both families, and the same";
    for (int const version : {0, 55})
    {
        setIcuVersion(version);
        EXPECT_EQ(&ICULocale::getJapan(), other) << version;
    }
    setIcuVersion(4);
    EXPECT_EQ(&ICULocale::getJapan(), first);
    EXPECT_EQ(first->getDisplayCountry(*other), "\u65E5\u672C");
}

TEST(ICULocaleFamilies, ConcurrentCallersGetTheSameObject)
{
    // No test before this one asks for Korea, so these threads make it. The selector is set meanwhile.
    std::vector<ICULocale const *> seen(4);
    std::latch start(4);
    std::vector<std::thread> threads;
    for (ICULocale const *&slot : seen)
    {
        threads.emplace_back(
            [&]
            {
                start.arrive_and_wait();
                slot = &ICULocale::getKorea();
            });
    }
    setIcuVersion(4);
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(std::set<ICULocale const *>(seen.begin(), seen.end()).size(), 1u);
}
