#include "vansys/TCType.h"

#include "vansys/ICUCharacterFunctions.h"
#include "vansys/ICUVersion.h"

#include <gtest/gtest.h>

using namespace VanICU;

namespace
{

/// Compares the answers for a character of a type with ICU's for a code point.
template <class Character>
void ExpectAnswersOfIcu(Character character, int c)
{
    ASSERT_EQ(TCType::isAlnum(character), t_u_hasBinaryProperty(c, UCHAR_POSIX_ALNUM) != 0) << c;
    ASSERT_EQ(TCType::isAlpha(character), t_u_isUAlphabetic(c) != 0) << c;
    ASSERT_EQ(TCType::isBlank(character), t_u_isblank(c) != 0) << c;
    ASSERT_EQ(TCType::isCntrl(character), t_u_charType(c) == 15) << c;
    ASSERT_EQ(TCType::isDigit(character), t_u_isdigit(c) != 0) << c;
    ASSERT_EQ(TCType::isGraph(character), t_u_hasBinaryProperty(c, UCHAR_POSIX_GRAPH) != 0) << c;
    ASSERT_EQ(TCType::isLower(character), t_u_isULowercase(c) != 0) << c;
    ASSERT_EQ(TCType::isPrint(character), t_u_hasBinaryProperty(c, UCHAR_POSIX_PRINT) != 0) << c;
    ASSERT_EQ(TCType::isPunct(character), t_u_ispunct(c) != 0) << c;
    ASSERT_EQ(TCType::isSpace(character), t_u_isUWhiteSpace(c) != 0) << c;
    ASSERT_EQ(TCType::isUpper(character), t_u_isUUppercase(c) != 0) << c;
    ASSERT_EQ(TCType::isXDigit(character), t_u_isxdigit(c) != 0) << c;
    using Result = decltype(TCType::ToLower(character));
    ASSERT_EQ(TCType::ToLower(character), static_cast<Result>(t_u_tolower(c))) << c;
    ASSERT_EQ(TCType::ToUpper(character), static_cast<Result>(t_u_toupper(c))) << c;
}

} // namespace

TEST(TCType, AnswersAreThoseOfIcuInBothFamilies)
{
    for (int const version : {4, 55, 4})
    {
        setIcuVersion(version);
        for (int c = 0; c < 0x10000; ++c)
        {
            ExpectAnswersOfIcu(static_cast<TCodeUnit>(c), c);
            ExpectAnswersOfIcu(static_cast<TWideTwin>(c), c);
        }
    }
    for (int c = 0; c < 0x100; ++c)
        ExpectAnswersOfIcu(static_cast<char>(c), c);
    if constexpr (sizeof(TWideTwin) != sizeof(TCodeUnit))
    {
        for (int c = 0x10000; c < 0x110100; c += c < 0x20000 ? 1 : 97)
            ExpectAnswersOfIcu(static_cast<TWideTwin>(c), c);
        ExpectAnswersOfIcu(static_cast<TWideTwin>(-1), -1);
    }
}
