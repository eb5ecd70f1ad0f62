#include "vansys/ICUString.h"

#include "icu/Families.h"

using namespace VanICU;

using ICUStringTest = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICUStringTest);

namespace
{

TStringCore textOf(ICUString &string)
{
    EXPECT_EQ(string.getTerminatedBuffer()[string.length()], 0);
    EXPECT_EQ(TStringCore(string.getBuffer(), string.length()), TStringCore(string.getTerminatedBuffer()));
    return TStringCore(string.getBuffer(), string.length());
}

} // namespace

TEST_P(ICUStringTest, IsMadeOfEachKindOfText)
{
    TStringCore const units("a\u20AC\U0001F600");
    struct
    {
        std::unique_ptr<ICUString> string;
        TStringCore expected;
    } const rows[] = {
        {ICUString::createInstance(), ""},
        {ICUString::createInstance("a\u20AC\U0001F600"), units},
        {ICUString::createInstance("a\xFF"), "a\uFFFD"},
        {ICUString::createInstance(u"a\u20AC\U0001F600"), units},
        {ICUString::createInstance(L"a\u20AC\U0001F600"), units},
        {ICUString::createInstance(u"a\u20AC\U0001F600", 2), "a\u20AC"},
        {ICUString::createInstance(L"abc", 2), "ab"},
        {ICUString::createInstance(static_cast<char const *>(nullptr)), ""},
        {ICUString::createInstance(static_cast<TCodeUnit const *>(nullptr), 5), ""},
        {ICUString::createInstance(static_cast<TWideTwin const *>(nullptr)), ""},
    };
    for (auto const &row : rows)
    {
        EXPECT_FALSE(row.string->isBogus());
        EXPECT_EQ(row.string->isEmpty(), row.expected.isEmpty());
        EXPECT_EQ(textOf(*row.string), row.expected);
    }
    TCodeUnit const lone[] = {0xD800, 0};
    EXPECT_EQ(ICUString::createInstance(lone)->charAt(0), 0xD800) << "units are taken as they are";
}

TEST_P(ICUStringTest, IsReadByUnitAndByCodePoint)
{
    auto const string = ICUString::createInstance("a\U0001F600b");
    EXPECT_EQ(string->length(), 4);
    EXPECT_EQ(string->countChar32(), 3);
    EXPECT_EQ(string->countChar32(1, 2), 1);
    EXPECT_EQ(string->countChar32(2, 100), 2) << "half a pair, and what follows";
    EXPECT_EQ(string->charAt(1), 0xD83D);
    EXPECT_EQ(string->char32At(1), 0x1F600);
    EXPECT_EQ(string->char32At(2), 0x1F600);
    EXPECT_EQ(string->char32At(3), 'b');
    EXPECT_EQ(string->charAt(4), 0xFFFF);
    EXPECT_EQ(string->char32At(-1), 0xFFFF);
}

TEST_P(ICUStringTest, IsChanged)
{
    auto const turkish = ICULocale::createFromName("tr");
    auto const root = ICULocale::getRoot();
    auto const string = ICUString::createInstance(" \u3000 TITLE\u00DF\t");
    EXPECT_EQ(textOf(string->trim()), "TITLE\u00DF");
    EXPECT_EQ(textOf(string->toLower(*turkish)), "t\u0131tle\u00DF");
    EXPECT_EQ(textOf(string->toUpper(*root)), "TITLESS");
    EXPECT_EQ(textOf(string->append(TStringCore("\u20AC and more"), 1)), "TITLESS\u20AC");
    EXPECT_EQ(textOf(string->append(string->getBuffer(), 2)), "TITLESS\u20ACTI") << "from its own text";

    auto const before = ICULocale::getDefault();
    ICULocale::setDefault(*turkish, m_status);
    EXPECT_EQ(textOf(string->toLower()), "t\u0131tless\u20ACt\u0131");
    EXPECT_EQ(textOf(ICUString::createInstance("i")->toUpper()), "\u0130");
    ICULocale::setDefault(*before, m_status);
    EXPECT_EQ(m_status, U_ZERO_ERROR);
}

TEST_P(ICUStringTest, IsComparedAndWrittenAsUtf8)
{
    auto const string = ICUString::createInstance("a\u20AC");
    EXPECT_EQ(string->compare(*ICUString::createInstance("a\u20AC")), 0);
    EXPECT_EQ(string->compare(*ICUString::createInstance("a\u20ACa")), -1);
    EXPECT_EQ(string->compare(*ICUString::createInstance("a")), 1);
    setIcuVersion(GetParam() == 4 ? 55 : 4);
    EXPECT_EQ(string->compare(*ICUString::createInstance("b")), -1) << "one of the other family";

    TCodeUnit const lone[] = {'<', 0xD800, '>'};
    string->append(lone, 3);
    std::string utf8 = "before ";
    EXPECT_EQ(&string->toUTF8(utf8), &utf8);
    EXPECT_EQ(utf8, "before a\u20AC<\uFFFD>");
}
