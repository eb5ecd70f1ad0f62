#include "vansys/ICUCharacterFunctions.h"
#include "vansys/ICUVersion.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>

using namespace VanICU;

TEST(ICUCharacterFunctions, SayWhatIcuSays)
{
    struct
    {
        char const *name;
        signed char (*own)(int), (*icu)(int);
    } const properties[] = {
#define VANSYS_ROW(name) {#name, &t_##name, &::name}
        VANSYS_ROW(u_charType),     VANSYS_ROW(u_isUAlphabetic), VANSYS_ROW(u_isULowercase),
        VANSYS_ROW(u_isUUppercase), VANSYS_ROW(u_isUWhiteSpace), VANSYS_ROW(u_isWhitespace),
        VANSYS_ROW(u_isblank),      VANSYS_ROW(u_isdigit),       VANSYS_ROW(u_ispunct),
        VANSYS_ROW(u_isxdigit),
#undef VANSYS_ROW
    };
    for (int const version : {55, 4})
    {
        setIcuVersion(version);
        for (int c = -1; c < 0x11000; ++c) // the first one is none
        {
            for (auto const &property : properties)
                ASSERT_EQ(property.own(c), property.icu(c)) << property.name << ' ' << c;
            for (int const number : {44, 45, 46}) // letters and digits, visible ones, those with blanks
                ASSERT_EQ(t_u_hasBinaryProperty(c, static_cast<ICUProperty>(number)),
                          u_hasBinaryProperty(c, static_cast<UProperty>(number)))
                    << c;
            ASSERT_EQ(t_u_tolower(c), u_tolower(c));
            ASSERT_EQ(t_u_toupper(c), u_toupper(c));
            for (unsigned int const options : {ICU_FOLD_CASE_DEFAULT, ICU_FOLD_CASE_EXCLUDE_SPECIAL_I})
                ASSERT_EQ(t_u_foldCase(c, options), u_foldCase(c, options)) << c;
        }
    }
}
