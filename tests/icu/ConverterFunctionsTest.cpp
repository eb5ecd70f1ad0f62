#include "vansys/ICULocalUCharsetDetectorPointer.h"

#include "icu/Families.h"

#include <set>

using namespace VanICU;

VANSYS_FAMILY_TEST(ICUConverterFunctions);

using Converter = Owned<ICUConverter, &t_ucnv_close>;

TEST_P(ICUConverterFunctions, KnowTheNamesOfEncodings)
{
    EXPECT_EQ(t_ucnv_compareNames("UTF-8", "utf8"), 0);
    EXPECT_NE(t_ucnv_compareNames("UTF-8", "UTF-16"), 0);
    std::set<std::string> names;
    for (int i = 0; i < t_ucnv_countAvailable(); ++i)
        names.insert(t_ucnv_getAvailableName(i));
    EXPECT_TRUE(names.count("UTF-8") && names.count("ISO-8859-1")) << names.size();
    EXPECT_STREQ(t_ucnv_getCanonicalName("latin1", "IANA", &m_status), "ISO-8859-1");
    EXPECT_STREQ(t_ucnv_getStandardName("ibm-943_P15A-2003", "MIME", &m_status), "Shift_JIS");

    std::string const defaultName = t_ucnv_getDefaultName();
    Converter const unnamed(t_ucnv_open(nullptr, &m_status));
    EXPECT_EQ(t_ucnv_getName(unnamed.get(), &m_status), defaultName);
    t_ucnv_setDefaultName("Shift_JIS");
    std::string const changed = t_ucnv_getDefaultName();
    EXPECT_TRUE(changed == "ibm-943_P15A-2003" || changed == "UTF-8")
        << changed << ": some builds of ICU know one";
    t_ucnv_setDefaultName(nullptr);
    EXPECT_EQ(t_ucnv_getDefaultName(), defaultName);
    EXPECT_EQ(TakeStatus(), U_ZERO_ERROR);
    EXPECT_EQ(t_ucnv_open("no such encoding", &m_status), nullptr);
    EXPECT_EQ(TakeStatus(), U_FILE_ACCESS_ERROR);
}

TEST_P(ICUConverterFunctions, ConvertWholeTextsAndSingleCharacters)
{
    Converter const converter(t_ucnv_open("Shift_JIS", &m_status));
    char buffer[10] = {};
    TStringCore const text("a\u65E5\u00E5"); // the last character has no place in the encoding
    EXPECT_EQ(t_ucnv_fromUChars(converter.get(), buffer, 10, text, -1, &m_status), 5);
    EXPECT_STREQ(buffer, "a\x93\xFA\xFC\xFC");
    char const *source = buffer;
    EXPECT_EQ(t_ucnv_getNextUChar(converter.get(), &source, buffer + 3, &m_status), 'a');
    EXPECT_EQ(source, buffer + 1);
    EXPECT_EQ(t_ucnv_getNextUChar(converter.get(), &source, buffer + 3, &m_status), 0x65E5);
    EXPECT_EQ(TakeStatus(), U_ZERO_ERROR);
    t_ucnv_getNextUChar(converter.get(), &source, buffer + 3, &m_status);
    EXPECT_EQ(TakeStatus(), U_INDEX_OUTOFBOUNDS_ERROR);
}

TEST_P(ICUConverterFunctions, ConvertInPieces)
{
    Converter const converter(t_ucnv_open("UTF-8", &m_status));
    int offsets[4] = {-1};
    auto const decoded = [&](std::string const &piece, bool isLast)
    {
        TCodeUnit wide[4];
        TCodeUnit *target = wide;
        char const *source = piece.data();
        t_ucnv_toUnicode(converter.get(), &target, wide + 4, &source, source + piece.size(), offsets, isLast,
                         &m_status);
        return TStringCore(wide, static_cast<int>(target - wide));
    };
    EXPECT_EQ(decoded("\xE2\x82", false), "");
    EXPECT_EQ(decoded("\xAC!", true), "\u20AC!");
    EXPECT_EQ(decoded("\xE2\x82", false), "");
    t_ucnv_reset(converter.get()); // forgets what is left over
    EXPECT_EQ(decoded("!", true), "!");
    EXPECT_EQ(offsets[0], 0);
    EXPECT_EQ(decoded("\xE2\x82", true), "\uFFFD") << "nothing more is to come";

    TStringCore const text("a\u20AC");
    char narrow[4] = {};
    char *target = narrow;
    TCodeUnit const *source = text.constData();
    t_ucnv_fromUnicode(converter.get(), &target, narrow + 1, &source, text.end(), nullptr, true, &m_status);
    EXPECT_EQ(TakeStatus(), U_BUFFER_OVERFLOW_ERROR);
    t_ucnv_fromUnicode(converter.get(), &target, narrow + 4, &source, text.end(), nullptr, true, &m_status);
    EXPECT_EQ(std::string(narrow, target), text.toStdString());
}

TEST_P(ICUConverterFunctions, DetectAnEncoding)
{
    std::string const bytes = "\xCF\xF0\xE8\xE2\xE5\xF2, \xEC\xE8\xF0! \xCA\xE0\xEA \xE4\xE5\xEB\xE0 \xF3 "
                              "\xF2\xE5\xE1\xFF \xF1\xE5\xE3\xEE\xE4\xED\xFF?"; // Russian in windows-1251
    ICULocalUCharsetDetectorPointer opened(t_ucsdet_open(&m_status));
    ICULocalUCharsetDetectorPointer detector(nullptr);
    detector = std::move(opened);
    EXPECT_EQ(opened.getAlias(), nullptr);
    t_ucsdet_setText(detector.getAlias(), bytes.data(), static_cast<int>(bytes.size()), &m_status);
    int count = 0;
    ICUCharsetMatch const **const matches = t_ucsdet_detectAll(detector.getAlias(), &count, &m_status);
    ASSERT_GE(count, 2);
    EXPECT_STREQ(t_ucsdet_getName(matches[0], &m_status), "windows-1251");
    EXPECT_GT(t_ucsdet_getConfidence(matches[0], &m_status),
              t_ucsdet_getConfidence(matches[count - 1], &m_status));
    t_ucsdet_close(detector.orphan()); // a leak or a second close is what a sanitizer sees
    EXPECT_EQ(detector.getAlias(), nullptr);
}
