#include "icu/Families.h"

#include <cstring>

using namespace VanICU;

using ICUCharacterFunctions = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICUCharacterFunctions);

TEST_P(ICUCharacterFunctions, PropertiesTellCharactersApart)
{
    struct Row
    {
        char const *name;
        signed char (*test)(int);
        char32_t const *with;
        char32_t const *without;
    };

    // Pairs of functions whose names are alike are told apart by what only one of them has.
    Row const rows[] = {
        {"isUAlphabetic", t_u_isUAlphabetic, U"aZ\u00df\u05d0\u2160\u24b6\U00010400", U"1 _\u0308"},
        {"isULowercase", t_u_isULowercase, U"a\u00df\u00aa\u2170\U00010428", U"A1\u01c5\u05d0"},
        {"isUUppercase", t_u_isUUppercase, U"A\u00c4\u2160\U00010400", U"a1\u01c5\u05d0"},
        {"isUWhiteSpace", t_u_isUWhiteSpace, U"\t\n \u0085\u00a0\u2028\u3000", U"x\u001c\u200b"},
        {"isWhitespace", t_u_isWhitespace, U"\t\n \u001c\u2028\u3000", U"x\u0085\u00a0\u200b"},
        {"isblank", t_u_isblank, U"\t \u00a0\u3000", U"\n\r\u2028x"},
        {"isdigit", t_u_isdigit, U"09\u0660\uff11\U0001d7ce", U"a\u00b2\u2160\u00bd"},
        {"ispunct", t_u_ispunct, U"!_()\u00ab\u3001", U"$+^`a"},
        {"isxdigit", t_u_isxdigit, U"09afAF\uff21\u0660", U"gG\u00b2"},
    };
    for (Row const &row : rows)
    {
        for (char32_t const *c = row.with; *c; ++c)
            EXPECT_TRUE(row.test(static_cast<int>(*c)))
                << row.name << ' ' << std::hex << static_cast<int>(*c);
        for (char32_t const *c = row.without; *c; ++c)
            EXPECT_FALSE(row.test(static_cast<int>(*c)))
                << row.name << ' ' << std::hex << static_cast<int>(*c);
        EXPECT_FALSE(row.test(0x110000)) << row.name;
        EXPECT_FALSE(row.test(-1)) << row.name;
    }

    struct
    {
        char32_t character;
        int category;
    } const categories[] = {{U'A', 1}, {U'a', 2}, {U'\u01c5', 3}, {0xD800, 18}, {0x378, 0}, {U'\u00bb', 29}};
    for (auto const &row : categories)
        EXPECT_EQ(t_u_charType(static_cast<int>(row.character)), row.category)
            << static_cast<int>(row.character);
}

TEST_P(ICUCharacterFunctions, BinaryPropertiesAreNamedByNumber)
{
    EXPECT_TRUE(t_u_hasBinaryProperty('7', static_cast<ICUProperty>(44)));
    EXPECT_FALSE(t_u_hasBinaryProperty('_', UCHAR_POSIX_ALNUM));
    EXPECT_TRUE(t_u_hasBinaryProperty('_', UCHAR_POSIX_GRAPH));
    EXPECT_FALSE(t_u_hasBinaryProperty(' ', UCHAR_POSIX_GRAPH));
    EXPECT_TRUE(t_u_hasBinaryProperty(' ', UCHAR_POSIX_PRINT));
    EXPECT_TRUE(t_u_hasBinaryProperty(0x4E00, UCHAR_IDEOGRAPHIC));
    EXPECT_FALSE(t_u_hasBinaryProperty('a', UCHAR_GENERAL_CATEGORY)) << "is no binary property";
}

TEST_P(ICUCharacterFunctions, CaseMapsToOneCharacter)
{
    struct
    {
        int character, lower, upper, folded, foldedTurkish;
    } const rows[] = {
        {'I', 'i', 'I', 'i', 0x131},
        {0x130, 'i', 0x130, 0x130, 'i'},
        {0xDF, 0xDF, 0xDF, 0xDF, 0xDF},
        {0x3A3, 0x3C3, 0x3A3, 0x3C3, 0x3C3},
        {0x3C2, 0x3C2, 0x3A3, 0x3C3, 0x3C3},
        {0x1C5, 0x1C6, 0x1C4, 0x1C6, 0x1C6},
        {0x10400, 0x10428, 0x10400, 0x10428, 0x10428},
        {0x110000, 0x110000, 0x110000, 0x110000, 0x110000},
    };
    for (auto const &row : rows)
    {
        SCOPED_TRACE(row.character);
        EXPECT_EQ(t_u_tolower(row.character), row.lower);
        EXPECT_EQ(t_u_toupper(row.character), row.upper);
        EXPECT_EQ(t_u_foldCase(row.character, ICU_FOLD_CASE_DEFAULT), row.folded);
        EXPECT_EQ(t_u_foldCase(row.character, ICU_FOLD_CASE_EXCLUDE_SPECIAL_I), row.foldedTurkish);
    }
}
