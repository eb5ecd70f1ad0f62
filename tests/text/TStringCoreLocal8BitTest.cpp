#include "vansys/ICUConverterFunctions.h"
#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

/// Makes a converter the default for the duration of a test. Where ICU has UTF-8 as its only default, nothing
/// else can be tested.
class WithDefaultConverter
{
public:
    explicit WithDefaultConverter(char const *name)
    {
        VanICU::t_ucnv_setDefaultName(name);
        VanICU::ICUErrorCode status = VanICU::U_ZERO_ERROR;
        VanICU::ICUConverter *const converter = VanICU::t_ucnv_open(name, &status);
        m_isDefault =
            std::string(VanICU::t_ucnv_getName(converter, &status)) == VanICU::t_ucnv_getDefaultName();
        VanICU::t_ucnv_close(converter);
    }

    ~WithDefaultConverter() { VanICU::t_ucnv_setDefaultName(nullptr); }

    WithDefaultConverter(WithDefaultConverter const &) = delete;
    WithDefaultConverter &operator=(WithDefaultConverter const &) = delete;

    bool isDefault() const { return m_isDefault; }

private:
    bool m_isDefault = false;
};

struct Decoded
{
    std::string bytes;
    char const *text;
};

struct Encoded
{
    char const *text;
    std::string bytes;
    bool complete;
};

void expectDecoded(Decoded const &row)
{
    SCOPED_TRACE(testing::PrintToString(row.bytes));
    EXPECT_EQ(TStringCore::fromLocal8Bit(row.bytes.data(), static_cast<int>(row.bytes.size())), row.text);
    EXPECT_EQ(TStringCore::fromLocal8Bit(row.bytes.c_str()), row.text);
}

void expectEncoded(Encoded const &row)
{
    SCOPED_TRACE(row.text);
    bool complete = !row.complete;
    EXPECT_EQ(TStringCore(row.text).toLocal8Bit(&complete), row.bytes);
    EXPECT_EQ(complete, row.complete);
    EXPECT_EQ(TStringCore(row.text).toLocal8Bit(), row.bytes);
}

} // namespace

TEST(TStringCoreLocal8Bit, Utf8)
{
    WithDefaultConverter const utf8("UTF-8");
    ASSERT_TRUE(utf8.isDefault());
    for (Decoded const &row : {
             Decoded{"", ""},
             Decoded{"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "a\u00E9\u20AC\U0001F600"},
             Decoded{std::string(50, 'x') + "\xC3\xA9",
                     "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\u00E9"},
             // Rejected bytes, at the end too, and U+001A, which is not one.
             Decoded{"\xFF<\x80>", "\uFFFD<\uFFFD>"},
             Decoded{"\xE2\x82", "\uFFFD"},
             Decoded{"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
             Decoded{"\x1A", "\x1A"},
         })
        expectDecoded(row);
    for (Encoded const &row : {
             Encoded{"", "", true},
             Encoded{"a\u00E9\u20AC\U0001F600", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", true},
             Encoded{"<\xED\xA0\x80>", "<\xEF\xBF\xBD>", false}, // a lone surrogate
         })
        expectEncoded(row);

    // Zero bytes and units inside the text are ordinary ones; a null pointer is the empty text.
    EXPECT_EQ(TStringCore::fromLocal8Bit("a\0b", 3), TStringCore(u"a\0b", 3));
    EXPECT_EQ(TStringCore(u"a\0b", 3).toLocal8Bit(), std::string("a\0b", 3));
    EXPECT_EQ(TStringCore::fromLocal8Bit("abc", 2), "ab");
    EXPECT_TRUE(TStringCore::fromLocal8Bit(nullptr, 3).isEmpty());
}

TEST(TStringCoreLocal8Bit, SingleByteCodePage)
{
    WithDefaultConverter const western("windows-1252");
    if (!western.isDefault())
        GTEST_SKIP() << "this ICU has UTF-8 as its only default converter";
    expectDecoded({"a\x80\xE9", "a\u20AC\u00E9"});
    expectEncoded({"a\u20AC\u00E9", "a\x80\xE9", true});
    expectEncoded({"a\u65E5", "a\x1A", false});
    expectEncoded({"\U0001F600", "\x1A", false}); // two units become one byte
}

TEST(TStringCoreLocal8Bit, DoubleByteCodePage)
{
    WithDefaultConverter const japanese("windows-932");
    if (!japanese.isDefault())
        GTEST_SKIP() << "this ICU has UTF-8 as its only default converter";
    expectDecoded({"a\x93\xFA\xB1", "a\u65E5\uFF71"});
    // The byte 7F is U+001A here, and stays it; half a character and a rejected byte do not become it.
    expectDecoded({"\x7F<\x93", "\x1A<\uFFFD"});
    expectDecoded({"\x93\xFF<", "\uFFFD\uFFFD<"});
    expectEncoded({"a\u65E5\uFF71", "a\x93\xFA\xB1", true});
    expectEncoded({"\u00E5", "\xFC\xFC", false});
}
