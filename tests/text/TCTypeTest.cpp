#include "vansys/TCType.h"

#include "vansys/ICUCharacterFunctions.h"
#include "vansys/ICUVersion.h"

#include <gtest/gtest.h>

#include <type_traits>

using namespace VanICU;

namespace
{

constexpr int ControlCategory = 15;
constexpr int Units = 0x10000;

/// A class with the forms of its function, and ICU's answer.
struct ClassRow
{
    char const *name;
    bool (*ofUnit)(TCodeUnit);
    bool (*ofTwin)(TWideTwin);
    bool (*ofByte)(char);
    bool (*icu)(int);
};

#define VANSYS_CLASS(name, answer)                                                                           \
    ClassRow                                                                                                 \
    {                                                                                                        \
#        name, [](TCodeUnit c) { return TCType::name(c); }, [](TWideTwin c)                                  \
        { return TCType::name(c); }, [](char c) { return TCType::name(c); }, [](int c) -> bool               \
        { return (answer); }                                                                                 \
    }

ClassRow const Classes[] = {
    VANSYS_CLASS(isAlnum, t_u_hasBinaryProperty(c, UCHAR_POSIX_ALNUM)),
    VANSYS_CLASS(isAlpha, t_u_isUAlphabetic(c)),
    VANSYS_CLASS(isBlank, t_u_isblank(c)),
    VANSYS_CLASS(isCntrl, t_u_charType(c) == ControlCategory),
    VANSYS_CLASS(isDigit, t_u_isdigit(c)),
    VANSYS_CLASS(isGraph, t_u_hasBinaryProperty(c, UCHAR_POSIX_GRAPH)),
    VANSYS_CLASS(isLower, t_u_isULowercase(c)),
    VANSYS_CLASS(isPrint, t_u_hasBinaryProperty(c, UCHAR_POSIX_PRINT)),
    VANSYS_CLASS(isPunct, t_u_ispunct(c)),
    VANSYS_CLASS(isSpace, t_u_isUWhiteSpace(c)),
    VANSYS_CLASS(isUpper, t_u_isUUppercase(c)),
    VANSYS_CLASS(isXDigit, t_u_isxdigit(c)),
};

#undef VANSYS_CLASS

} // namespace

TEST(TCType, AnswersForEveryUnitAreThoseOfIcuInBothFamilies)
{
    for (int const version : {4, 55, 4})
    {
        setIcuVersion(version);
        for (int c = 0; c < Units; ++c)
        {
            auto const unit = static_cast<TCodeUnit>(c);
            for (ClassRow const &row : Classes)
            {
                ASSERT_EQ(row.ofUnit(unit), row.icu(c)) << row.name << ' ' << c;
                ASSERT_EQ(row.ofTwin(static_cast<TWideTwin>(c)), row.icu(c)) << row.name << ' ' << c;
            }
            ASSERT_EQ(TCType::ToLower(unit), t_u_tolower(c)) << c;
            ASSERT_EQ(TCType::ToUpper(unit), t_u_toupper(c)) << c;
            ASSERT_EQ(TCType::ToLower(static_cast<TWideTwin>(c)), static_cast<TWideTwin>(t_u_tolower(c)))
                << c;
            ASSERT_EQ(TCType::ToUpper(static_cast<TWideTwin>(c)), static_cast<TWideTwin>(t_u_toupper(c)))
                << c;
        }
    }
}

// That the tables agree with ICU does not say that ICU was asked the right question.
TEST(TCType, ClassesAreTheOnesThatTheirNamesSay)
{
    EXPECT_TRUE(TCType::isSpace(TCodeUnit{0x3000}) && TCType::isSpace(TCodeUnit{0xA0}));
    EXPECT_FALSE(TCType::isSpace(TCodeUnit{0x200B}));
    EXPECT_TRUE(TCType::isDigit(TCodeUnit{0x0660}));
    EXPECT_TRUE(TCType::isCntrl(TCodeUnit{0x7F}));
    EXPECT_FALSE(TCType::isCntrl(TCodeUnit{0xAD}));
    EXPECT_TRUE(TCType::isGraph('a') && TCType::isPrint(' ') && !TCType::isGraph(' '));
    EXPECT_FALSE(TCType::isPrint(TCodeUnit{0xD800})) << "a surrogate is classified as itself";
}

TEST(TCType, BytesAreWidened)
{
    static_assert(std::is_same_v<decltype(TCType::ToUpper('a')), TCodeUnit>);
    static_assert(std::is_same_v<decltype(TCType::ToUpper(TWideTwin{'a'})), TWideTwin>);
    for (int c = 0; c < 0x100; ++c)
    {
        auto const byte = static_cast<char>(c);
        for (ClassRow const &row : Classes)
            EXPECT_EQ(row.ofByte(byte), row.icu(c)) << row.name << ' ' << c;
        EXPECT_EQ(TCType::ToLower(byte), t_u_tolower(c));
        EXPECT_EQ(TCType::ToUpper(byte), t_u_toupper(c));
    }
}

TEST(TCType, CodePointsThatAreNoUnitsAreAnsweredToo)
{
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
        GTEST_SKIP() << "the other wide type holds units";
    for (int c = Units; c < 0x110100; c += c < 0x20000 ? 1 : 97)
    {
        for (ClassRow const &row : Classes)
            ASSERT_EQ(row.ofTwin(static_cast<TWideTwin>(c)), row.icu(c)) << row.name << ' ' << c;
        ASSERT_EQ(TCType::ToLower(static_cast<TWideTwin>(c)), static_cast<TWideTwin>(t_u_tolower(c))) << c;
        ASSERT_EQ(TCType::ToUpper(static_cast<TWideTwin>(c)), static_cast<TWideTwin>(t_u_toupper(c))) << c;
    }
    auto const none = static_cast<TWideTwin>(-1);
    for (ClassRow const &row : Classes)
        EXPECT_FALSE(row.ofTwin(none)) << row.name;
    EXPECT_EQ(TCType::ToLower(none), none);
}
