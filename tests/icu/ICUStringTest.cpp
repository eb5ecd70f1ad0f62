#include "vansys/ICUString.h"

#include "icu/Families.h"

using namespace VanICU;

VANSYS_FAMILY_TEST(ICUStringTest);

namespace
{

TStringCore textOf(ICUString &string)
{
    TStringCore const text(string.getBuffer(), string.length());
    EXPECT_EQ(TStringCore(string.getTerminatedBuffer()), text);
    return text;
}

} // namespace

TEST_P(ICUStringTest, IsMadeOfEachKindOfText)
{
    std::pair<std::unique_ptr<ICUString>, TStringCore> const rows[] = {
        {ICUString::createInstance(), ""},
        {ICUString::createInstance("a\u20AC\U0001F600\xFF"), u"a\u20AC\U0001F600\uFFFD"},
        {ICUString::createInstance(u"a\u20AC\U0001F600"), u"a\u20AC\U0001F600"},
        {ICUString::createInstance(u"a\u20AC\U0001F600", 2), u"a\u20AC"},
        {ICUString::createInstance(L"a\u20AC\U0001F600"), u"a\u20AC\U0001F600"},
        {ICUString::createInstance(L"abc", 2), "ab"},
        {ICUString::createInstance(static_cast<char const *>(nullptr)), ""},
        {ICUString::createInstance(static_cast<TCodeUnit const *>(nullptr), 5), ""},
        {ICUString::createInstance(static_cast<TWideTwin const *>(nullptr)), ""},
    };
    for (auto const &[string, expected] : rows)
    {
        EXPECT_FALSE(string->isBogus());
        EXPECT_EQ(string->isEmpty(), expected.isEmpty());
        EXPECT_EQ(textOf(*string), expected);
    }
}

TEST_P(ICUStringTest, IsReadByUnitAndByCodePoint)
{
    auto const string = ICUString::createInstance("a\U0001F600b");
    EXPECT_EQ(string->length(), 4);
    EXPECT_EQ(string->countChar32(), 3);
    EXPECT_EQ(string->countChar32(2, 100), 2) << "half a pair, and what follows";
    EXPECT_EQ(string->charAt(1), 0xD83D);
    EXPECT_EQ(string->char32At(2), 0x1F600);
    EXPECT_EQ(string->charAt(4), 0xFFFF);
}

TEST_P(ICUStringTest, IsChanged)
{
    auto const turkish = ICULocale::createFromName("tr");
    auto const string = ICUString::createInstance(" \u3000 TITLE\u00DF\t");
    EXPECT_EQ(textOf(string->trim()), "TITLE\u00DF");
    EXPECT_EQ(textOf(string->toLower(*turkish)), "t\u0131tle\u00DF");
    EXPECT_EQ(textOf(string->toUpper(*ICULocale::getRoot())), "TITLESS");
    EXPECT_EQ(textOf(string->append(string->getBuffer(), 2)), "TITLESSTI") << "from its own text";
    auto const before = ICULocale::getDefault();
    ICULocale::setDefault(*turkish, m_status);
    EXPECT_EQ(textOf(string->toLower()), "t\u0131tlesst\u0131");
    EXPECT_EQ(textOf(ICUString::createInstance("i")->toUpper()), "\u0130");
    EXPECT_EQ(textOf(ICUString::createInstance("i")->toUpper(*ICULocale::getRoot())), "I");
    ICULocale::setDefault(*before, m_status);
}

TEST_P(ICUStringTest, IsComparedAndWrittenAsUtf8)
{
    auto const string = ICUString::createInstance("a\u20AC");
    EXPECT_EQ(string->compare(*ICUString::createInstance("a\u20AC")), 0);
    EXPECT_EQ(string->compare(*ICUString::createInstance("a")), 1);
    setIcuVersion(GetParam() == 4 ? 55 : 4);
    EXPECT_EQ(string->compare(*ICUString::createInstance("b")), -1) << "one of the other family";
    TCodeUnit const lone[] = {'<', 0xD800, '>'};
    string->append(lone, 3);
    std::string utf8 = "before ";
    EXPECT_EQ(&string->toUTF8(utf8), &utf8);
    EXPECT_EQ(utf8, "before a\u20AC<\uFFFD>");
}
