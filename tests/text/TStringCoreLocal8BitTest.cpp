#include "vansys/ICUConverterFunctions.h"
#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

/// Makes a converter the default for the duration of a test.
struct WithDefaultConverter
{
    explicit WithDefaultConverter(char const *name) { VanICU::t_ucnv_setDefaultName(name); }
    ~WithDefaultConverter() { VanICU::t_ucnv_setDefaultName(nullptr); }
    WithDefaultConverter(WithDefaultConverter const &) = delete;
    WithDefaultConverter &operator=(WithDefaultConverter const &) = delete;
};

void ExpectDecoded(std::string const &bytes, TStringCore const &text)
{
    SCOPED_TRACE(testing::PrintToString(bytes));
    EXPECT_EQ(TStringCore::fromLocal8Bit(bytes.data(), static_cast<int>(bytes.size())), text);
    EXPECT_EQ(TStringCore::fromLocal8Bit(bytes.c_str()), TStringCore(text.constData()));
}

void ExpectEncoded(TStringCore const &text, std::string const &bytes, bool isComplete)
{
    SCOPED_TRACE(testing::PrintToString(text));
    bool complete = !isComplete;
    EXPECT_EQ(text.toLocal8Bit(&complete), bytes);
    EXPECT_EQ(complete, isComplete);
}

void ExpectBothWays(std::string const &bytes, TStringCore const &text)
{
    ExpectDecoded(bytes, text);
    ExpectEncoded(text, bytes, true);
}

} // namespace

TEST(TStringCoreLocal8Bit, Utf8)
{
    WithDefaultConverter const utf8("UTF-8");
    ExpectBothWays("", u"");
    ExpectBothWays("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", u"a\u00E9\u20AC\U0001F600");
    ExpectBothWays(std::string(50, 'x') + "\xC3\xA9", TStringCore(u'x', 50).append(u'\u00E9'));
    ExpectBothWays(std::string("a\0\x1A", 3), TStringCore(u"a\0\x1A", 3));
    // Rejected bytes, at the end too, and a lone surrogate.
    ExpectDecoded("\xFF<\x80>\xE2\x82", u"\uFFFD<\uFFFD>\uFFFD");
    ExpectDecoded("\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD");
    ExpectEncoded("<\xED\xA0\x80>", "<\xEF\xBF\xBD>", false);
    EXPECT_EQ(TStringCore::fromLocal8Bit("abc", 2), "ab");
    EXPECT_TRUE(TStringCore::fromLocal8Bit(nullptr, 3).isEmpty());
}

TEST(TStringCoreLocal8Bit, OtherCodePages)
{
    WithDefaultConverter const western("windows-1252");
    if (std::string(VanICU::t_ucnv_getDefaultName()) == "UTF-8")
        GTEST_SKIP() << "this ICU has UTF-8 as its only default converter";
    ExpectBothWays("a\x80\xE9", u"a\u20AC\u00E9");
    ExpectEncoded(u"a\u65E5\U0001F600", "a\x1A\x1A", false);
    WithDefaultConverter const japanese("windows-932");
    ExpectBothWays("a\x93\xFA\xB1", u"a\u65E5\uFF71");
    // The byte 7F is U+001A here, and stays it; half a character and a rejected byte do not become it.
    ExpectDecoded("\x7F<\x93", u"\x1A<\uFFFD");
    ExpectDecoded("\x93\xFF<", u"\uFFFD\uFFFD<");
    ExpectEncoded(u"\u00E5", "\xFC\xFC", false);
}
