#include "vansys/TCType.h"

#include "vansys/ICUCharacterFunctions.h"
#include "vansys/ICUVersion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

using namespace VanICU;

namespace
{

template <class Character>
using Class = bool (*)(Character);

/// A class with the forms of its function, and ICU's answer.
struct ClassRow
{
    char const *name;
    Class<TCodeUnit> ofUnit;
    Class<TWideTwin> ofTwin;
    Class<char> ofByte;
    Class<int> icu;
};

#define CLASS(name, answer)                                                                                  \
    {                                                                                                        \
#        name, [](TCodeUnit c) { return TCType::name(c); }, [](TWideTwin c)                                  \
        { return TCType::name(c); }, [](char c) { return TCType::name(c); }, [](int c) -> bool               \
        { return answer; }                                                                                   \
    }

ClassRow const Classes[] = {CLASS(isAlnum, t_u_hasBinaryProperty(c, UCHAR_POSIX_ALNUM)),
                            CLASS(isAlpha, t_u_isUAlphabetic(c)),
                            CLASS(isBlank, t_u_isblank(c)),
                            CLASS(isCntrl, t_u_charType(c) == 15),
                            CLASS(isDigit, t_u_isdigit(c)),
                            CLASS(isGraph, t_u_hasBinaryProperty(c, UCHAR_POSIX_GRAPH)),
                            CLASS(isLower, t_u_isULowercase(c)),
                            CLASS(isPrint, t_u_hasBinaryProperty(c, UCHAR_POSIX_PRINT)),
                            CLASS(isPunct, t_u_ispunct(c)),
                            CLASS(isSpace, t_u_isUWhiteSpace(c)),
                            CLASS(isUpper, t_u_isUUppercase(c)),
                            CLASS(isXDigit, t_u_isxdigit(c))};

#undef CLASS

/// Compares the answers for a character of a type with ICU's for a code point.
template <class Character>
void ExpectAnswersOfIcu(Character character, Class<Character> ClassRow::*form, int codePoint)
{
    for (ClassRow const &row : Classes)
        ASSERT_EQ((row.*form)(character), row.icu(codePoint)) << row.name << ' ' << codePoint;
    using Result = decltype(TCType::ToLower(character));
    ASSERT_EQ(TCType::ToLower(character), static_cast<Result>(t_u_tolower(codePoint))) << codePoint;
    ASSERT_EQ(TCType::ToUpper(character), static_cast<Result>(t_u_toupper(codePoint))) << codePoint;
}

} // namespace

TEST(TCType, AnswersAreThoseOfIcuInBothFamilies)
{
    for (int const version : {4, 55, 4})
    {
        setIcuVersion(version);
        for (int c = 0; c < 0x10000; ++c)
        {
            ExpectAnswersOfIcu(static_cast<TCodeUnit>(c), &ClassRow::ofUnit, c);
            ExpectAnswersOfIcu(static_cast<TWideTwin>(c), &ClassRow::ofTwin, c);
        }
    }
    for (int c = 0; c < 0x100; ++c)
        ExpectAnswersOfIcu(static_cast<char>(c), &ClassRow::ofByte, c);
    if constexpr (sizeof(TWideTwin) != sizeof(TCodeUnit))
    {
        for (int c = 0x10000; c < 0x110100; c += c < 0x20000 ? 1 : 97)
            ExpectAnswersOfIcu(static_cast<TWideTwin>(c), &ClassRow::ofTwin, c);
        ExpectAnswersOfIcu(static_cast<TWideTwin>(-1), &ClassRow::ofTwin, -1);
    }
}

// That the tables agree with ICU does not say that ICU was asked the right question.
TEST(TCType, ClassesAreTheOnesThatTheirNamesSay)
{
    auto const all = [](bool (*isIn)(TCodeUnit), std::u16string_view units)
    { return std::all_of(units.begin(), units.end(), [=](char16_t unit) { return isIn(TCodeUnit(unit)); }); };
    EXPECT_TRUE(all(TCType::isSpace, u" \t\n\r\u00A0\u3000"));
    EXPECT_TRUE(all(TCType::isDigit, u"7\u0660"));
    EXPECT_TRUE(all(TCType::isCntrl, u"\x1\x7F"));
    EXPECT_FALSE(TCType::isSpace(TCodeUnit{0x200B}) || TCType::isCntrl(TCodeUnit{0xAD}));
    EXPECT_TRUE(TCType::isGraph('a') && TCType::isPrint(' ') && !TCType::isGraph(' '));
    EXPECT_FALSE(TCType::isPrint(TCodeUnit{0xD800})) << "a surrogate is classified as itself";
}
