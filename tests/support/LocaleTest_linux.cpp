// Puts the program into the C locale that the environment names, as many hosts do.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

namespace
{

/// Null when the environment names a locale that is not there.
char const *const locale = std::setlocale(LC_ALL, "");

} // namespace

TEST(Locale, IsThatOfTheEnvironment)
{
    if (!std::getenv("LOCPATH"))
        GTEST_SKIP() << "the environment asks for no locale of the tests";
    EXPECT_STREQ(locale, std::getenv("LC_ALL"));
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}
