#include "vansys/ICULocalUCharsetDetectorPointer.h"

#include "icu/Families.h"

#include <set>
#include <string>
#include <utility>

using namespace VanICU;

using ICUConverterFunctions = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICUConverterFunctions);

using Converter = Owned<ICUConverter, &t_ucnv_close>;

TEST_P(ICUConverterFunctions, KnowsTheNamesOfEncodings)
{
    EXPECT_EQ(t_ucnv_compareNames("UTF-8", "utf8"), 0);
    EXPECT_EQ(t_ucnv_compareNames("ISO_8859-01", "iso88591"), 0);
    EXPECT_NE(t_ucnv_compareNames("UTF-8", "UTF-16"), 0);

    std::set<std::string> names;
    for (int i = 0; i < t_ucnv_countAvailable(); ++i)
        names.insert(t_ucnv_getAvailableName(i));
    EXPECT_GT(names.size(), 200u);
    EXPECT_TRUE(names.count("UTF-8") && names.count("ISO-8859-1"));
    EXPECT_EQ(t_ucnv_getAvailableName(t_ucnv_countAvailable()), nullptr);

    EXPECT_STREQ(t_ucnv_getCanonicalName("latin1", "IANA", &m_status), "ISO-8859-1");
    EXPECT_STREQ(t_ucnv_getStandardName("ibm-943_P15A-2003", "MIME", &m_status), "Shift_JIS");
    EXPECT_EQ(t_ucnv_getStandardName("UTF-8", "no such standard", &m_status), nullptr);
    EXPECT_EQ(m_status, U_ZERO_ERROR);
}

TEST_P(ICUConverterFunctions, OpensByNameAndByDefault)
{
    Converter const named(t_ucnv_open("latin1", &m_status));
    EXPECT_STREQ(t_ucnv_getName(named.get(), &m_status), "ISO-8859-1");
    Converter const unnamed(t_ucnv_open(nullptr, &m_status));
    EXPECT_STREQ(t_ucnv_getName(unnamed.get(), &m_status), t_ucnv_getDefaultName());
    ASSERT_EQ(m_status, U_ZERO_ERROR);

    EXPECT_EQ(t_ucnv_open("no such encoding", &m_status), nullptr);
    EXPECT_EQ(m_status, U_FILE_ACCESS_ERROR);
    EXPECT_STREQ(t_u_errorName(m_status), "U_FILE_ACCESS_ERROR");
    t_ucnv_close(nullptr);
}

TEST_P(ICUConverterFunctions, TheDefaultMayBeChangedWhereIcuAllowsIt)
{
    std::string const before = t_ucnv_getDefaultName();
    t_ucnv_setDefaultName("Shift_JIS");
    std::string const changed = t_ucnv_getDefaultName();
    EXPECT_TRUE(changed == "ibm-943_P15A-2003" || changed == "UTF-8") << changed;
    t_ucnv_setDefaultName(nullptr);
    EXPECT_EQ(t_ucnv_getDefaultName(), before);
}

TEST_P(ICUConverterFunctions, ConvertsWholeTextsAndSingleCharacters)
{
    Converter const converter(t_ucnv_open("Shift_JIS", &m_status));
    EXPECT_EQ(Filled<char>(
                  [&](auto *out, int room) {
                      return t_ucnv_fromUChars(converter.get(), out, room, TStringCore("a\u65E5\u00E5"), -1,
                                               &m_status);
                  }),
              "a\x93\xFA\xFC\xFC")
        << "the last character has no place in the encoding";

    std::string const bytes = "a\x93\xFA";
    char const *source = bytes.data();
    char const *const limit = source + bytes.size();
    EXPECT_EQ(t_ucnv_getNextUChar(converter.get(), &source, limit, &m_status), 'a');
    EXPECT_EQ(source, bytes.data() + 1);
    EXPECT_EQ(t_ucnv_getNextUChar(converter.get(), &source, limit, &m_status), 0x65E5);
    EXPECT_EQ(source, limit);
    EXPECT_EQ(m_status, U_ZERO_ERROR);
    t_ucnv_getNextUChar(converter.get(), &source, limit, &m_status);
    EXPECT_EQ(m_status, U_INDEX_OUTOFBOUNDS_ERROR);
}

TEST_P(ICUConverterFunctions, ConvertsInPieces)
{
    Converter const converter(t_ucnv_open("UTF-8", &m_status));

    // A character is cut in two by the end of the first piece.
    std::string const bytes = "\xE2\x82\xAC!";
    TCodeUnit wide[4] = {};
    int offsets[4] = {};
    TCodeUnit *target = wide;
    char const *source = bytes.data();
    t_ucnv_toUnicode(converter.get(), &target, wide + 4, &source, bytes.data() + 2, nullptr, false,
                     &m_status);
    EXPECT_EQ(target, wide);
    EXPECT_EQ(source, bytes.data() + 2);
    t_ucnv_toUnicode(converter.get(), &target, wide + 4, &source, bytes.data() + 4, nullptr, true, &m_status);
    EXPECT_EQ(TStringCore(wide, static_cast<int>(target - wide)), "\u20AC!");

    // What is left over is forgotten.
    source = bytes.data();
    target = wide;
    t_ucnv_toUnicode(converter.get(), &target, wide + 4, &source, bytes.data() + 2, nullptr, false,
                     &m_status);
    t_ucnv_reset(converter.get());
    source = bytes.data() + 3;
    t_ucnv_toUnicode(converter.get(), &target, wide + 4, &source, bytes.data() + 4, offsets, true, &m_status);
    EXPECT_EQ(TStringCore(wide, static_cast<int>(target - wide)), "!");
    EXPECT_EQ(offsets[0], 0);
    EXPECT_EQ(m_status, U_ZERO_ERROR);

    // The target is too short at first.
    TStringCore const text("a\u20AC");
    char narrow[4] = {};
    char *narrowTarget = narrow;
    TCodeUnit const *wideSource = text.constData();
    t_ucnv_fromUnicode(converter.get(), &narrowTarget, narrow + 1, &wideSource, text.end(), nullptr, true,
                       &m_status);
    EXPECT_EQ(m_status, U_BUFFER_OVERFLOW_ERROR);
    EXPECT_EQ(narrowTarget, narrow + 1);
    m_status = U_ZERO_ERROR;
    t_ucnv_fromUnicode(converter.get(), &narrowTarget, narrow + 4, &wideSource, text.end(), nullptr, true,
                       &m_status);
    EXPECT_EQ(std::string(narrow, narrowTarget), text.toStdString());
    EXPECT_EQ(wideSource, text.end());
    EXPECT_EQ(m_status, U_ZERO_ERROR);
}

TEST_P(ICUConverterFunctions, DetectsAnEncoding)
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
    ASSERT_EQ(m_status, U_ZERO_ERROR);
    ASSERT_GE(count, 2);
    EXPECT_STREQ(t_ucsdet_getName(matches[0], &m_status), "windows-1251");
    int const best = t_ucsdet_getConfidence(matches[0], &m_status);
    int const worst = t_ucsdet_getConfidence(matches[count - 1], &m_status);
    EXPECT_TRUE(0 < worst && worst < best && best <= 100) << worst << ' ' << best;
    EXPECT_EQ(m_status, U_ZERO_ERROR);

    // Closed by whoever owns it; a leak or a second close is what the sanitizer would see.
    t_ucsdet_close(detector.orphan());
    EXPECT_EQ(detector.getAlias(), nullptr);
}
