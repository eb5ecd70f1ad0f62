#include "support/TestText.h"
#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

struct Row
{
    char const *text;
    char const *unixText;
    char const *dosText;
};

constexpr Row Rows[] = {
    {"", "", ""},
    {"no line end", "no line end", "no line end"},
    {"a\nb\n", "a\nb\n", "a\r\nb\r\n"},
    {"a\r\r", "a\n", "a\r\n"}, // as long as before
    {"\n\r\n", "\n\n", "\r\n\r\n"},
    {"\r\n\ra", "\n\na", "\r\n\r\na"},
    {"\r\n\n", "\n\n", "\r\n\r\n"},
    {"\n\n\r\r\nb", "\n\n\nb", "\r\n\r\n\r\nb"},
    {"\r\r\r\n\n", "\n\n", "\r\n\r\n"},
    {"fourteen units\n", "fourteen units\n", "fourteen units\r\n"}, // grows beyond the inline room
};

template <class Unit>
std::string inPlace(std::string const &text)
{
    std::vector<Unit> units(text.begin(), text.end());
    units.push_back(0);
    int const length = TStringCore::dosToUnix(units.data());
    EXPECT_EQ(units[static_cast<std::size_t>(length)], 0);
    return std::string(units.begin(), units.begin() + length);
}

} // namespace

TEST(TStringCoreLineEnds, Table)
{
    for (Row const &row : Rows)
    {
        TStringCore const text = row.text;
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(TStringCore(text).dosToUnix(), row.unixText);
        EXPECT_EQ(TStringCore(text).unixToDos(), row.dosText);
        EXPECT_EQ(TStringCore(text).toNativeLineEndings(), row.dosText);
        EXPECT_EQ(inPlace<TCodeUnit>(row.text), row.unixText);
        EXPECT_EQ(inPlace<TWideTwin>(row.text), row.unixText);
    }
    EXPECT_EQ(TStringCore::dosToUnix(static_cast<TCodeUnit *>(nullptr)), 0);
    EXPECT_EQ(TStringCore::dosToUnix(static_cast<TWideTwin *>(nullptr)), 0);
}

TEST(TStringCoreLineEnds, AreStableOnceConverted)
{
    RandomText random(u"\r\n\r\na");
    for (int round = 0; round < 5000; ++round)
    {
        TStringCore const text(random.text(30));
        SCOPED_TRACE(testing::PrintToString(text));
        TStringCore const dos = TStringCore(text).unixToDos();
        TStringCore const unixText = TStringCore(text).dosToUnix();
        ASSERT_EQ(TStringCore(dos).unixToDos(), dos);
        ASSERT_EQ(TStringCore(dos).dosToUnix(), unixText);
        ASSERT_EQ(TStringCore(unixText).dosToUnix(), unixText);
        ASSERT_EQ(TStringCore(unixText).unixToDos(), dos);
    }
}
