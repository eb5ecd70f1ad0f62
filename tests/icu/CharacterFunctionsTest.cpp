#include "icu/Families.h"

using namespace VanICU;

using ICUCharacterFunctions = ICUFamilyTest;
VANSYS_WITH_BOTH_FAMILIES(ICUCharacterFunctions);

TEST_P(ICUCharacterFunctions, PropertiesTellCharactersApart)
{
    struct
    {
        char const *name;
        signed char (*test)(int);
        std::u32string with, without;
    } const rows[] = {
        // Functions whose names are alike are told apart by what only one of them has.
        {"isUAlphabetic", t_u_isUAlphabetic, U"aZ\u00df\u05d0\u2160\u24b6\U00010400", U"1 _\u0308"},
        {"isULowercase", t_u_isULowercase, U"a\u00df\u00aa\u2170\U00010428", U"A1\u01c5\u05d0"},
        {"isUUppercase", t_u_isUUppercase, U"A\u00c4\u2160\U00010400", U"a1\u01c5\u05d0"},
        {"isUWhiteSpace", t_u_isUWhiteSpace, U"\t\n \u0085\u00a0\u2028\u3000", U"x\u001c\u200b"},
        {"isWhitespace", t_u_isWhitespace, U"\t\n \u001c\u2028\u3000", U"x\u0085\u00a0\u200b"},
        {"isblank", t_u_isblank, U"\t \u00a0\u3000", U"\n\r\u2028x"},
        {"isdigit", t_u_isdigit, U"09\u0660\uff11\U0001d7ce", U"a\u00b2\u2160\u00bd"},
        {"ispunct", t_u_ispunct, U"!_()\u00ab\u3001", U"$+^`a"},
        {"isxdigit", t_u_isxdigit, U"09afAF\uff21\u0660", U"gG\u00b2"},
        {"graph", [](int c) { return t_u_hasBinaryProperty(c, UCHAR_POSIX_GRAPH); }, U"_7", U" "},
        {"print", [](int c) { return t_u_hasBinaryProperty(c, UCHAR_POSIX_PRINT); }, U"_7 ", U"\t"},
        {"by number", [](int c) { return t_u_hasBinaryProperty(c, static_cast<ICUProperty>(44)); }, U"7a",
         U"_"},
    };
    for (auto const &row : rows)
    {
        for (auto const c : row.with)
            EXPECT_TRUE(row.test(static_cast<int>(c))) << row.name << ' ' << static_cast<int>(c);
        for (auto const c : row.without + char32_t(0x110000))
            EXPECT_FALSE(row.test(static_cast<int>(c))) << row.name << ' ' << static_cast<int>(c);
    }
}

TEST_P(ICUCharacterFunctions, MapToACategoryAndToOneCharacter)
{
    struct
    {
        int character, category, lower, upper, folded, foldedTurkish;
    } const rows[] = {
        {'I', 1, 'i', 'I', 'i', 0x131},
        {0x130, 1, 'i', 0x130, 0x130, 'i'},
        {0xDF, 2, 0xDF, 0xDF, 0xDF, 0xDF},
        {0x3C2, 2, 0x3C2, 0x3A3, 0x3C3, 0x3C3},
        {0x1C5, 3, 0x1C6, 0x1C4, 0x1C6, 0x1C6},
        {0x10400, 1, 0x10428, 0x10400, 0x10428, 0x10428},
        {0x110000, 0, 0x110000, 0x110000, 0x110000, 0x110000},
    };
    for (auto const &row : rows)
    {
        SCOPED_TRACE(row.character);
        EXPECT_EQ(t_u_charType(row.character), row.category);
        EXPECT_EQ(t_u_tolower(row.character), row.lower);
        EXPECT_EQ(t_u_toupper(row.character), row.upper);
        EXPECT_EQ(t_u_foldCase(row.character, ICU_FOLD_CASE_DEFAULT), row.folded);
        EXPECT_EQ(t_u_foldCase(row.character, ICU_FOLD_CASE_EXCLUDE_SPECIAL_I), row.foldedTurkish);
    }
}
