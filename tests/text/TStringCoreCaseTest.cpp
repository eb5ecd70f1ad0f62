#include "vansys/ICUCharacterFunctions.h"
#include "vansys/ICULocale.h"
#include "vansys/ICUStringFunctions.h"
#include "vansys/TStringCore.h"

#include "support/TestText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace VanICU;

namespace
{

/// Makes a locale ICU's default for as long as this lives.
class DefaultLocale
{
public:
    explicit DefaultLocale(char const *name) { set(*ICULocale::createFromName(name)); }
    ~DefaultLocale() { set(*m_before); }

    DefaultLocale(DefaultLocale const &) = delete;
    DefaultLocale &operator=(DefaultLocale const &) = delete;

private:
    static void set(ICULocale const &locale)
    {
        ICUErrorCode status = U_ZERO_ERROR;
        ICULocale::setDefault(locale, status);
        EXPECT_EQ(status, U_ZERO_ERROR);
    }

    std::unique_ptr<ICULocale> const m_before = ICULocale::getDefault();
};

/// Every language with rules of its own, and some without.
constexpr char const *Locales[] = {"", "en_US", "de_DE", "tr_TR", "az", "lt_LT", "el_GR", "hy", "nl"};

using MapByIcu = decltype(t_u_strToLower);

TStringCore mappedByIcu(MapByIcu map, TStringCore const &text)
{
    std::vector<TCodeUnit> room(static_cast<std::size_t>(text.length()) * 3 +
                                1); // nothing grows more than that
    ICUErrorCode status = U_ZERO_ERROR;
    int const length = map(room.data(), static_cast<int>(room.size()), text, text.length(), nullptr, &status);
    EXPECT_TRUE(ICU_SUCCESS(status));
    return TStringCore(room.data(), length);
}

/// Whether both mappings of the text are ICU's.
testing::AssertionResult agreesWithIcu(TStringCore const &text)
{
    TStringCore const lower = mappedByIcu(t_u_strToLower, text);
    TStringCore const upper = mappedByIcu(t_u_strToUpper, text);
    if (text.toLower() != lower)
        return testing::AssertionFailure() << text.toStdString() << " to " << text.toLower().toStdString()
                                           << ", not " << lower.toStdString();
    if (text.toUpper() != upper)
        return testing::AssertionFailure() << text.toStdString() << " to " << text.toUpper().toStdString()
                                           << ", not " << upper.toStdString();
    return testing::AssertionSuccess();
}

} // namespace

TEST(TStringCoreCase, EveryUnitIsMappedAsIcuDoes)
{
    // Alone, and in the middle of so many others that vectors take part.
    for (int c = 0; c < 0x10000; ++c)
    {
        auto const unit = static_cast<TCodeUnit>(c);
        ASSERT_TRUE(agreesWithIcu(TStringCore(unit, 1))) << c;
        ASSERT_TRUE(agreesWithIcu(TStringCore(u"abC\u00C4").append(unit).append(u"\u03B1XyzAbC"))) << c;
    }
}

TEST(TStringCoreCase, EveryLetterIsMappedByTheRulesOfTheLanguage)
{
    // Before and behind what rules look at.
    constexpr char16_t const *Surroundings[][2] = {
        {u"", u""},        {u"A", u""},      {u"", u"\u03A3"},       {u"\u03A3", u"b"},
        {u"I", u"\u0300"}, {u"", u"\u0307"}, {u"\u03B1", u"\u0301"},
    };
    std::vector<TCodeUnit> letters;
    for (int c = 0; c < 0x10000; ++c)
    {
        if (t_u_tolower(c) != c || t_u_toupper(c) != c || t_u_hasBinaryProperty(c, UCHAR_CASED) ||
            (t_u_hasBinaryProperty(c, UCHAR_CASE_IGNORABLE) && c < 0x2100))
            letters.push_back(static_cast<TCodeUnit>(c));
    }
    for (char const *name : Locales)
    {
        DefaultLocale const locale(name);
        for (TCodeUnit const letter : letters)
        {
            for (auto const &[before, after] : Surroundings)
                ASSERT_TRUE(agreesWithIcu(TStringCore(before).append(letter).append(after)))
                    << name << ' ' << +letter;
        }
    }
}

TEST(TStringCoreCase, TextIsMappedByTheRulesOfTheLanguage)
{
    constexpr char16_t const *Alphabets[] = {
        u"abcxyzABCXYZ .,-09@[`{",
        u"abcxyzJ\u0300\u0307",
        u"abiIjJAB \u0307\u0300\u012E\u00CC",
        u"αβσςΣΑΒΆά ,.'\u2019\u0301b\xD801\xDC00",
        u"abc ÄäÖöéÉßИиДд日\u01C5\uFB01",
        u"iıİI\u0587\u0345\u1FB3\u0149\u1E9E ",
    };
    for (char const *name : Locales)
    {
        DefaultLocale const locale(name);
        for (char16_t const *alphabet : Alphabets)
        {
            RandomText random(alphabet);
            for (int round = 0; round < 1000; ++round)
                ASSERT_TRUE(agreesWithIcu(TStringCore(random.text(50)))) << name;
        }
    }
}

TEST(TStringCoreCase, MappingsMayDependOnLanguageAndChangeTheLength)
{
    struct Row
    {
        char const *locale;
        char16_t const *text;
        char16_t const *lower;
        char16_t const *upper;
    };
    Row const rows[] = {
        {"", u"Straße ﬁn", u"straße ﬁn", u"STRASSE FIN"},
        {"", u"İI", u"i\u0307i", u"İI"},
        {"", u"ΣΑΣ ΣΑΣ.", u"σας σας.", u"ΣΑΣ ΣΑΣ."},
        {"", u"Σ", u"σ", u"Σ"},
        {"de", u"TITLE", u"title", u"TITLE"},
        {"tr", u"TITLE", u"t\u0131tle", u"TITLE"},
        {"tr", u"title", u"title", u"T\u0130TLE"},
        {"lt", u"I\u0300", u"i\u0307\u0300", u"I\u0300"},
        {"el", u"άλφα", u"άλφα", u"ΑΛΦΑ"},
    };
    for (Row const &row : rows)
    {
        DefaultLocale const locale(row.locale);
        TStringCore const text(row.text);
        EXPECT_EQ(text.toLower(), row.lower);
        EXPECT_EQ(text.toUpper(), row.upper);
    }
    DefaultLocale const root("");
    EXPECT_EQ(TStringCore(TCodeUnit{0x0390}, 1000).toUpper().length(), 3000);
}

TEST(TStringCoreCase, TextWithoutTheOtherCaseIsShared)
{
    TStringCore const text(u"nothing in here is upper case, and there are 64 of them: éαи日");
    EXPECT_EQ(text.toLower().constData(), text.constData());
    EXPECT_NE(text.toUpper().constData(), text.constData());
    TStringCore const inlineText(u"123");
    EXPECT_EQ(inlineText.toUpper(), inlineText);
    EXPECT_EQ(TStringCore().toLower(), TStringCore());
}
