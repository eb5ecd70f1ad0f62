#include "vansys/ICUCharacterFunctions.h"
#include "vansys/ICULocale.h"
#include "vansys/ICUStringFunctions.h"
#include "vansys/TStringCore.h"

#include "support/TestText.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace VanICU;

namespace
{

/// Leaves ICU's default locale as it was.
class TStringCoreCase : public testing::Test
{
protected:
    ~TStringCoreCase() override { UseLocale(*m_before); }

    static void UseLocale(ICULocale const &locale)
    {
        ICUErrorCode status = U_ZERO_ERROR;
        ICULocale::setDefault(locale, status);
        EXPECT_EQ(status, U_ZERO_ERROR);
    }

private:
    std::unique_ptr<ICULocale> const m_before = ICULocale::getDefault();
};

TStringCore MappedByIcu(decltype(t_u_strToLower) map, TStringCore const &text)
{
    // Nothing becomes more than three times as long.
    std::vector<TCodeUnit> room(static_cast<std::size_t>(text.length()) * 3 + 1);
    ICUErrorCode status = U_ZERO_ERROR;
    int const length = map(room.data(), static_cast<int>(room.size()), text, text.length(), nullptr, &status);
    EXPECT_TRUE(ICU_SUCCESS(status));
    return TStringCore(room.data(), length);
}

void ExpectAsByIcu(TStringCore const &text, char const *locale)
{
    ASSERT_EQ(text.toLower(), MappedByIcu(t_u_strToLower, text)) << locale << ' ' << text.toStdString();
    ASSERT_EQ(text.toUpper(), MappedByIcu(t_u_strToUpper, text)) << locale << ' ' << text.toStdString();
}

} // namespace

TEST_F(TStringCoreCase, TextIsMappedAsByIcuWhateverTheLanguage)
{
    // Before and behind what rules look at, and among so many units that vectors take part.
    constexpr char16_t const *Surroundings[][2] = {
        {u"", u""},        {u"A", u""},      {u"", u"\u03A3"},       {u"\u03A3", u"b"},
        {u"I", u"\u0300"}, {u"", u"\u0307"}, {u"\u03B1", u"\u0301"}, {u"abC\u00C4", u"\u03B1XyzAbC"}};
    // Every language with rules of its own, and some without.
    for (char const *name : {"", "en_US", "de_DE", "tr_TR", "az", "lt_LT", "el_GR", "hy", "nl"})
    {
        UseLocale(*ICULocale::createFromName(name));
        for (int c = 0; c < 0x10000; ++c)
        {
            // Languages differ in letters, and in what belongs to them.
            if (*name != '\0' && t_u_tolower(c) == c && t_u_toupper(c) == c &&
                !t_u_hasBinaryProperty(c, UCHAR_CASED) &&
                !(t_u_hasBinaryProperty(c, UCHAR_CASE_IGNORABLE) && c < 0x2100))
                continue;
            for (auto const &[before, after] : Surroundings)
                ExpectAsByIcu(TStringCore(before).append(static_cast<TCodeUnit>(c)).append(after), name);
            ASSERT_FALSE(HasFailure()) << c;
        }
        for (char16_t const *alphabet :
             {u"abcxyzABCXYZ .,-09@[`{", u"abcxyzJ\u0300\u0307", u"abiIjJAB \u0307\u0300\u012E\u00CC",
              u"αβσςΣΑΒΆά ,.'\u2019\u0301b\xD801\xDC00", u"abc ÄäÖöéÉßИиДд日\u01C5\uFB01",
              u"iıİI\u0587\u0345\u1FB3\u0149\u1E9E "})
        {
            RandomText random(alphabet);
            for (int round = 0; round < 1000 && !HasFailure(); ++round)
                ExpectAsByIcu(TStringCore(random.text(50)), name);
        }
    }
}

TEST_F(TStringCoreCase, MappingsMayDependOnLanguageAndChangeTheLength)
{
    struct Row
    {
        char const *locale;
        TStringCore text, lower, upper;
    };
    for (auto const &[name, text, lower, upper] :
         {Row{"", u"Straße ﬁn İI", u"straße ﬁn i\u0307i", u"STRASSE FIN İI"},
          Row{"", u"Σ ΣΑΣ ΣΑΣ.", u"σ σας σας.", u"Σ ΣΑΣ ΣΑΣ."},
          Row{"", TStringCore(u'\u0390', 1000), TStringCore(u'\u0390', 1000),
              TStringCore(u"\u0399\u0308\u0301").repeated(1000)},
          Row{"tr", u"TITLE title", u"t\u0131tle title", u"TITLE T\u0130TLE"}})
    {
        UseLocale(*ICULocale::createFromName(name));
        EXPECT_EQ(text.toLower(), lower);
        EXPECT_EQ(text.toUpper(), upper);
    }
}

TEST_F(TStringCoreCase, TextWithoutTheOtherCaseIsShared)
{
    TStringCore const text(u"nothing in here is upper case, and there are 64 of them: éαи日");
    EXPECT_EQ(text.toLower().constData(), text.constData());
    EXPECT_NE(text.toUpper().constData(), text.constData());
}
