#include "vansys/TPathCore.h"
#include "vansys/TPathCoreFilesystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

using Path = TPathCore;

TEST(PathRelations, NormalForm)
{
    struct Row
    {
        TStringCore path;
        TStringCore normal;
    };
    for (Row const &row : std::initializer_list<Row>{
             {u"", u""},
             {u".", u"."},
             {u"a/./b//c/", u"a/b/c"},
             {u"a/../b", u"b"},
             {u"a/../../b/..", u".."},
             {u"a/..", u"."},
             {u"../../a", u"../../a"},
             {u"C:/../a", u"C:/a"},
             {u"C:a/../..", u"C:.."},
             {u"C:.", u"C:"},
             {u"/..", u"/"},
             {u"//srv/share/../a", u"//srv/share/a"},
             {u"//srv/../a/..", u"//srv/a"},
             {u"//srv/.", u"//srv/"},
             {u"a/../C:/b", u"./C:/b"},
             {u"./C:", u"./C:"},
             {u"x/C:", u"x/C:"},
             {u"//?/C:/a/../b//.", u"//?/C:/a/../b/."},
             {u"//?/a/../b", u"//?/a/../b"},
             {u"...", u"..."},
         })
        EXPECT_EQ(Path(row.path).LexicallyNormal().GenericString(), row.normal)
            << testing::PrintToString(row.path);
}

TEST(PathRelations, WayFromOneToTheOther)
{
    struct Row
    {
        TStringCore path;
        TStringCore base;
        TStringCore relative; ///< empty: the text does not tell
        bool isUnder;
    };
    for (Row const &row : std::initializer_list<Row>{
             {u"C:/a/b", u"C:/a", u"b", true},
             {u"c:/A/b", u"C:/a", u"b", true}, // case is disregarded
             {u"C:/a", u"C:/a", u".", true},
             {u"C:/a/../b", u"C:/a", u"../b", false},
             {u"/a/bc", u"/a/b", u"../bc", false},
             {u"a/b", u"", u"a/b", true},
             {u"", u"a/b", u"../..", false},
             {u"../a", u"", u"../a", false},
             {u"a", u"..", u"", false},
             {u"../../a", u"..", u"../a", false},
             {u"/a", u"a", u"", false},
             {u"C:a", u"C:", u"a", true},
             {u"C:/a", u"C:", u"", false},
             {u"C:/a", u"D:/a", u"", false},
             {u"//srv/x/a", u"//srv/x/b", u"../a", false},
             {u"//srv/x", u"//srv", u"x", true},
             {u"//srv/x/a", u"//srv/y/a", u"", false},
             {u"a/C:/x", u"a", u"./C:/x", true},
             {u"//?/C:/a/../b", u"//?/C:/a", u"../b", false},
         })
    {
        EXPECT_EQ(Path(row.path).RelativeTo(row.base).GenericString(), row.relative)
            << testing::PrintToString(row.path) << testing::PrintToString(row.base);
        EXPECT_EQ(Path(row.path).IsUnder(row.base), row.isUnder)
            << testing::PrintToString(row.path) << testing::PrintToString(row.base);
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
