// Puts the program into the C locale that the environment names, as many hosts do.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>

namespace
{

/// Empty when the environment names a locale that is not there. A copy: what setlocale returns ends when a
/// test changes the locale for a while.
std::string const g_locale = []
{
    char const *const name = std::setlocale(LC_ALL, "");
    return std::string(name ? name : "");
}();

} // namespace

TEST(Locale, IsThatOfTheEnvironment)
{
    if (!std::getenv("LOCPATH"))
        GTEST_SKIP() << "the environment asks for no locale of the tests";
    EXPECT_EQ(g_locale, std::getenv("LC_ALL"));
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}
