#include "vansys/TPathCore.h"
#include "vansys/TPathCoreFilesystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

using Path = TPathCore;

namespace
{

/// The parts of a row, which "|" is between.
std::vector<TStringCore> Parts(TStringCore const &row)
{
    return row.split(u'|');
}

} // namespace

// Each row is a path and its normal form.
TEST(PathRelations, NormalForm)
{
    TStringCore const rows = u"| .|. a/./b//c/|a/b/c a/../b|b a/../../b/..|.. a/..|. ../../a|../../a "
                             u"C:/../a|C:/a C:a/../..|C:.. C:.|C: /..|/ //srv/share/../a|//srv/share/a "
                             u"//srv/../a/..|//srv/a //srv/.|//srv/ a/../C:/b|./C:/b ./C:|./C: x/C:|x/C: "
                             u"//?/C:/a/../b//.|//?/C:/a/../b/. //?/a/../b|//?/a/../b ...|...";
    for (TStringCore const &row : rows.split(u' '))
        EXPECT_EQ(Path(Parts(row)[0]).LexicallyNormal().GenericString(), Parts(row)[1]);
}

// Each row is a path, a base, the way from there, which is empty where the text does not tell, and whether it
// is under it.
TEST(PathRelations, WayFromOneToTheOther)
{
    for (TStringCore const row :
         {u"C:/a/b|C:/a|b|under", u"c:/A/b|C:/a|b|under", u"C:/a|C:/a|.|under", u"C:/a/../b|C:/a|../b",
          u"/a/bc|/a/b|../bc", u"a/b||a/b|under", u"|a/b|../..", u"../a||../a", u"a|..|", u"../../a|..|../a",
          u"/a|a|", u"C:a|C:|a|under", u"C:/a|C:|", u"C:/a|D:/a|", u"//srv/x/a|//srv/x/b|../a",
          u"//srv/x|//srv|x|under", u"//srv/x/a|//srv/y/a|", u"a/C:/x|a|./C:/x|under",
          u"//?/C:/a/../b|//?/C:/a|../b"})
    {
        std::vector<TStringCore> const parts = Parts(row);
        EXPECT_EQ(Path(parts[0]).RelativeTo(parts[1]).GenericString(), parts[2])
            << testing::PrintToString(row);
        EXPECT_EQ(Path(parts[0]).IsUnder(parts[1]), parts.size() == 4) << testing::PrintToString(row);
    }
    EXPECT_FALSE(Path(u"/A/b").IsUnder(u"/a", TStringCore::CaseSensitive));
    EXPECT_EQ(Path(u"/A/b").RelativeTo(u"/a", TStringCore::CaseSensitive).GenericString(), u"../A/b");
}

// Where the rules of the standard library are the same: it keeps a separator at the end, which is taken off.
TEST(PathRelations, AgreeWithTheStandardLibrary)
{
    namespace fs = std::filesystem;
    std::minstd_rand random(1);
    auto const make = [&random]
    {
        static constexpr char const *Names[] = {"a", "b", "..", ".", "", "..a"};
        std::string text = random() % 2 == 0 ? "/a" : "a";
        for (auto count = random() % 6; count > 0; --count)
            text.append("/").append(Names[random() % std::size(Names)]);
        return text;
    };
    auto const text = [](fs::path const &path)
    {
        std::string generic = path.generic_string();
        if (generic.size() > 1 && generic.back() == '/')
            generic.pop_back();
        return TStringCore::fromStdString(generic);
    };
    for (int i = 0; i < 200'000; ++i)
    {
        std::string const first = make();
        std::string const second = make();
        fs::path const normal = text(fs::path(first).lexically_normal()).toStdString();
        fs::path const base = text(fs::path(second).lexically_normal()).toStdString();
        Path const path(first.c_str());
        ASSERT_EQ(path.LexicallyNormal().GenericString(), text(normal)) << first;
        Path const relative = path.RelativeTo(second.c_str());
        // From a folder above, and on Windows from one without a root directory to one with, the standard
        // library's way does not lead there.
        if (base.generic_string().substr(0, 2) != ".." &&
            normal.has_root_directory() == base.has_root_directory())
        {
            ASSERT_EQ(relative.GenericString(), text(normal.lexically_relative(base).lexically_normal()))
                << first << " from " << second;
        }
        Path const there = relative.IsEmpty() ? path : Path(second.c_str()) / relative;
        ASSERT_EQ(there.LexicallyNormal().GenericString(), text(normal)) << first << " from " << second;
        Path const round = PathFromFilesystem(PathToFilesystem(path));
        ASSERT_EQ(round.LexicallyNormal().GenericString(), text(normal));
    }
}
