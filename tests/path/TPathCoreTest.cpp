#include "vansys/TPathCore.h"

#include "path/PathContradiction.h"
#include "support/FailureMessage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

using Path = TPathCore;

static_assert(std::is_nothrow_move_constructible_v<Path> && !std::is_convertible_v<Path, bool>);

namespace
{

/// What there is to ask of a path: root name, root directory, parent, file name, stem, extension, what it is
/// and has, share name, object name, elements.
TStringCore Describe(Path const &path)
{
    EXPECT_EQ(FindContradiction(path), nullptr);
    bool const kinds[] = {path.IsAbsolute(),       path.IsRelative(), path.IsUNC(),
                          path.IsExtendedLength(), path.IsDots(),     path.HasFilename(),
                          path.HasExtension(),     path.HasStem(),    path.HasUNCObjectName(),
                          path.IsAdminShare()};
    TStringCore kind;
    for (std::size_t i = 0; i < std::size(kinds); ++i)
        kind.append(kinds[i] ? TStringCore("ARUXDFESO$"[i], 1) : TStringCore());
    if (path.IsAdminShare())
        kind.append(path.AdminShareDriveLetter());
    return TStringCore::join({path.RootName().GenericString(), path.RootDirectory().GenericString(),
                              path.Parent().GenericString(), path.Filename().GenericString(),
                              path.Stem().GenericString(), path.Extension(), kind, path.UNCShareName(),
                              path.UNCObjectName(), TStringCore::join(path.toVector(), u" ")},
                             u"|");
}

/// With blanks in between.
template <class... Paths>
TStringCore Texts(Paths const &...paths)
{
    return TStringCore::join({paths.GenericString()...}, u" ");
}

} // namespace

TEST(TPathCore, AnswersQuestions)
{
    std::pair<TStringCore, TStringCore> const rows[] = {
        {u"", u"||||||R|||"},
        {u"C:\\dir\\f.tar.gz", u"C:|/|C:/dir|f.tar.gz|f.tar|gz|AFES|||C: / dir f.tar.gz"},
        {u"C:\\", u"C:|/|C:||||A|||C: /"},
        {u"C:", u"C:||||||R|||C:"},
        {u"C:b", u"C:||C|b|b||RFS|||C: b"},
        {u"\u00E9:/x", u"\u00E9:|/|\u00E9:/|x|x||AFS|||\u00E9: / x"},
        {u"1:/x", u"||1:|x|x||RFS|||1: x"},
        {u"/", u"|/||||||||/"},
        {u"///", u"//|/|//||||AU|||// /"},
        {u"a//", u"||a||||RFS|||a"},
        {u".profile", u"|||.profile|.profile||RF|||.profile"},
        {u"d/a.", u"||d|a.|a||RFES|||d a."},
        {u"d/..", u"||d|..|..||RDFS|||d .."},
        {u"a/b:c.d", u"||a/b|c.d|c|d|RFES|||a b:c.d"},
        {u"x:a.b:c", u"x:||x|a.b:c|a.b:c|b:c|RFES|||x: a.b:c"},
        {u"\\\\srv\\share\\dir\\f.txt",
         u"//srv|/|//srv/share/dir|f.txt|f|txt|AUFESO|share|/dir/f.txt|//srv / share dir f.txt"},
        {u"//srv", u"//srv||/|srv|srv||RUFSO||//srv|//srv"},
        {u"//srv/", u"//srv|/|||||AUFS|||//srv /"},
        {u"//srv//share", u"//srv|/|//srv/|share|share||AUFSO||/share|//srv / share"},
        {u"//srv/C$", u"//srv|/|//srv/|C$|C$||AUFS$C|C$||//srv / C$"},
        {u"//srv/C$x", u"//srv|/|//srv/|C$x|C$x||AUFS|C$x||//srv / C$x"},
        {u"//srv/1$", u"//srv|/|//srv/|1$|1$||AUFS|1$||//srv / 1$"},
        {u"\\\\?\\C:\\", u"//?/C:|/|//?/C:||||AX|||//?/C: /"},
        {u"//?/C:/x", u"//?/C:|/|//?/C:/|x|x||AXFS|||//?/C: / x"},
        {u"//?/uNc/srv/d$", u"//?/uNc/srv|/|//?/uNc/srv/|d$|d$||AUXFS$d|d$||//?/uNc/srv / d$"},
        {u"//?/UNC/", u"//?/UNC/||//?/UNC||||RUXFSO||//?/UNC/|//?/UNC/"},
        {u"//?/UNC", u"|/|//?|UNC|UNC||XFS|||/ ? UNC"},
        {u"//?x/y", u"|/|//?x|y|y||FS|||/ ?x y"},
        {u"//x:/", u"//x:|/|//x:||||AU|||//x: /"},
        {TStringCore(u"a\0b/c", 5), TStringCore(u"||a\0b|c|c||RFS|||a\0b c", 22)},
    };
    for (auto const &[text, expected] : rows)
        EXPECT_EQ(Describe(Path(text)), expected) << testing::PrintToString(text);
}

// Each row is a text and the path of it.
TEST(TPathCore, BecomesGenericWhateverItIsMadeOf)
{
    TStringCore const rows =
        u"C:\\dir\\|C:/dir,C:\\|C:/,\\\\?\\C:\\|//?/C:/,a//|a/,a\\/\\|a//,\\\\srv\\|//srv/,//srv/a/|//srv/a,"
        u"////|///,|,a\\path that\\is/not\\inline\\|a/path that/is/not/inline";
    for (TStringCore const &row : rows.split(u','))
    {
        TStringCore const text = row.split(u'|')[0], generic = row.split(u'|')[1];
        for (Path const &path : {Path(text), Path(TStringCore(text.constData())), Path(text.constData()),
                                 Path(text.toWCharVector().data()), Path(text.toStdUString().c_str()),
                                 Path(text.toStdString().c_str()), Path::fromWindows(text)})
            EXPECT_EQ(path.GenericString(), generic);
        EXPECT_EQ(Path(text).NativeString(), TStringCore(generic).replaceAnyOf(u'/', u'\\'));
    }
}

TEST(TPathCore, IsPutTogetherAndEdited)
{
    EXPECT_EQ(Texts(Path(u"a").Append(u"b"), Path(u"a").Concat(u"/").Append(u"b"), Path(u"a") / Path(u"/b"),
                    Path() / L"b", Path("a") / Path(), Path(u"C:") /= "b", Path(u"x").Assign(u"a/b"),
                    Path(u"a") += u"b", Path(u"a") + Path(u"b"), Path(u"a") + TStringCore(u"\\b\\"),
                    Path(u"a") + L"b/" + u"c\\d" + "/", Path(u"a") + L'\\' + u'\\' + '.',
                    Path::fromVector({u"C:", u"\\", u"a", u"b\\", u"", u"c"})),
              u"a/b a/b a/b b a C:/b a/b ab ab a/b abc/d/ a//. C:/a/b/c");
    TStringCore removed;
    for (Path const path : {u"a/b", u"/b", u"C:/b", u"b", u"C:b", u"//srv", u"C:/"})
        removed.append(Path(path).RemoveFilename().GenericString()).append(u' ');
    EXPECT_EQ(removed, u"a / C:/  C / C:/ ");
    EXPECT_EQ(Texts(Path(u"a.b/f.x.y").RemoveExtension(), Path(u"a.b/f").RemoveExtension(),
                    Path(u"f.txt").ReplaceExtension(u""), Path(u"f.txt").ReplaceExtension(u"md"),
                    Path(u"f").ReplaceExtension(u"md"), Path(u"f.").ReplaceExtension(u"md"),
                    Path(u"..").ReplaceExtension(u"md")),
              u"a.b/f.x a.b/f f f.md f.md f.md ...md");
    for (Path const start : {u"a", u"a/b/that/is/not/inline"})
    {
        Path doubled = start, joined = start;
        EXPECT_EQ(doubled += doubled, start + start);
        EXPECT_EQ(joined /= joined, start / start.GenericString());
    }
    // Swapping leaves the other in native form.
    Path a = u"a/b", b = Path(u"c") + u"/" + u"/";
    a.Swap(b);
    EXPECT_EQ(Texts(a, b), u"c// a\\b");
    a.Swap(a);
    EXPECT_EQ(a.GenericString(), u"c\\") << "made generic before it is made native";
}

TEST(TPathCore, ComparesWithAndWithoutCase)
{
    // Longer than what the hash folds at a time, with letters that differ in case beyond ASCII.
    Path const lower = Path(u"c:/\u00E4") / TStringCore(u'x', 300) / u"\u03C3";
    Path const upper = Path(u"C:/\u00C4") / TStringCore(u'X', 300) / u"\u03A3";
    Path const other = upper + u'Y';
    EXPECT_TRUE(lower == upper && upper.Compare(lower) == 0 && lower != other && PathLess()(lower, other));
    EXPECT_TRUE(upper < lower && lower > upper && upper <= upper && lower >= upper && !(lower < lower));
    EXPECT_TRUE(Path(u"a\\B") == u"A\\b" && L"a/b/" == Path("A/B") && Path(u"a") == TStringCore(u"A"));
    EXPECT_TRUE(Path(u"a//b") != u"a/b" && u"b" != Path(u"a") && TStringCore(u"b") != Path(u"a"));
    EXPECT_LT(Path(u"a/b"), Path(u"aA")) << "the order is not that of native texts";
    EXPECT_EQ((std::set<Path>{lower, upper, other}.size()), 3u);
    EXPECT_EQ((std::unordered_set<Path>{lower, upper, other}.size()), 2u);
    EXPECT_EQ((std::unordered_set<Path, PathHashExact, PathEqualExact>{lower, upper, lower}.size()), 2u);
    EXPECT_NE(std::hash<Path>()(upper), std::hash<Path>()(other));
}

// Each row is a path and its normal form.
TEST(TPathCore, HasANormalForm)
{
    TStringCore const rows = u"| .|. a/./b//c/|a/b/c a/../b|b a/../../b/..|.. a/..|. ../../a|../../a "
                             u"C:/../a|C:/a C:a/../..|C:.. C:.|C: /..|/ //srv/share/../a|//srv/share/a "
                             u"//srv/../a/..|//srv/a //srv/.|//srv/ a/../C:/b|./C:/b ./C:|./C: x/C:|x/C: "
                             u"//?/C:/a/../b//.|//?/C:/a/../b/. //?/a/../b|//?/a/../b ...|...";
    for (TStringCore const &row : rows.split(u' '))
        EXPECT_EQ(Path(row.split(u'|')[0]).LexicallyNormal().GenericString(), row.split(u'|')[1]);
}

// Each row is a path, a base, the way from there, which is empty where the text does not tell, and whether it
// is under it.
TEST(TPathCore, TellsTheWayFromOneToTheOther)
{
    TStringCore const rows = u"C:/a/b|C:/a|b|under c:/A/b|C:/a|b|under C:/a|C:/a|.|under C:/a/../b|C:/a|../b "
                             u"/a/bc|/a/b|../bc a/b||a/b|under |a/b|../.. ../a||../a a|..| ../../a|..|../a "
                             u"/a|a| C:a|C:|a|under C:/a|C:| C:/a|D:/a| //srv/x/a|//srv/x/b|../a "
                             u"//srv/x|//srv|x|under //srv/x/a|//srv/y/a| a/C:/x|a|./C:/x|under "
                             u"//?/C:/a/../b|//?/C:/a|../b";
    for (TStringCore const &row : rows.split(u' '))
    {
        std::vector<TStringCore> const parts = row.split(u'|');
        EXPECT_EQ(Path(parts[0]).RelativeTo(parts[1]).GenericString(), parts[2])
            << testing::PrintToString(row);
        EXPECT_EQ(Path(parts[0]).IsUnder(parts[1]), parts.size() == 4) << testing::PrintToString(row);
    }
    EXPECT_FALSE(Path(u"/A/b").IsUnder(u"/a", TStringCore::CaseSensitive));
    EXPECT_EQ(Path(u"/A/b").RelativeTo(u"/a", TStringCore::CaseSensitive).GenericString(), u"../A/b");
}

TEST(TPathCore, HasLongAndShortNamesOnDisk)
{
    Path const folder = std::filesystem::current_path().u16string().c_str();
    TStringCore const name = folder.NativeLongPath();
    EXPECT_EQ(Path(name), folder);
    EXPECT_EQ(Path(Path(folder.NativeShortPath()).NativeLongPath()), folder);
    EXPECT_EQ((folder / u"none" / u"x.y").NativeLongPath(), TStringCore(name).append(u"\\none\\x.y"));
    EXPECT_EQ((Path(u"//?") + u'/' + folder).NativeLongPath(), TStringCore(u"\\\\?\\").append(name));
    EXPECT_TRUE(Path().NativeLongPath() == u"" &&
                (folder / TStringCore(u"a\0b", 3)).NativeShortPath() == u"");
    // What other systems say of such a name is theirs to choose.
    Path const tooLong = folder / TStringCore(u'x', 300);
    EXPECT_TRUE(std::filesystem::path::preferred_separator == '\\' || tooLong.NativeLongPath().isEmpty());
}

TEST(TPathCoreIterator, StepsAndReportsItsEnds)
{
    constexpr char16_t AtEnd[] = u"TPathCore::iterator trying to increment beyond end.";
    constexpr char16_t AtBegin[] = u"TPathCore::iterator trying to decrement beyond beginning.";
    Path const path = u"C:/a//b/", same = path;
    EXPECT_TRUE(path.front() == u"C:" && path.back() == u"b" && (Path(u"a/b") + u"/" + u"/").back() == u"b");
    EXPECT_TRUE(path.begin() != same.begin() && path.begin() == path.begin() && path.begin() != path.end());
    Path::iterator at = path.begin();
    EXPECT_TRUE(*at++ == u"C:" && *++at == u"a" && *at-- == u"a" && at->length() == 1 && *--at == u"C:");
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { --at; }), AtBegin);
    EXPECT_EQ(*at, u"C:") << "a step that throws is not taken";
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { ++path.end(); }), AtEnd);
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { (void)Path().back(); }), AtBegin);
    Path::iterator none;
    EXPECT_TRUE(none == Path::iterator() && *none == Path().front() && none != path.begin());
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { none++; }), AtEnd);
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { none--; }), AtBegin);

    Path changed = u"abc/de/f";
    at = ++changed.begin();
    changed = u"a";
    EXPECT_EQ(*at, u"de");
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { ++at; }), u"Element position out of range.");
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { --at; }), u"Separator position out of range.");
    changed = u"abcdefg";
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { --at; }), u"TPathCore::iterator out of sync in prev.");
    EXPECT_TRUE(*++at == u"" && at == changed.end());
}

[[gnu::noinline]] static std::vector<TStringCore> MessagesWithCallStack()
{
    return Path::Exception(u"message", true).GetMessagesVector();
}

TEST(TPathCoreException, HasACallStackWhenWanted)
{
    EXPECT_EQ(Path::Exception(u"message", false).GetMessagesVector().size(), 1u);
    std::vector<TStringCore> const messages = MessagesWithCallStack();
    ASSERT_GT(messages.size(), 4u);
    EXPECT_EQ(messages[0], u"message");
    EXPECT_TRUE(messages[1].startsWith(u"0x00000000 ") && messages[1].contains(u"Exception"));
    // Where programs have no symbols, there is but the address.
    EXPECT_TRUE(messages[2].contains(u"MessagesWithCallStack") || messages[2].contains(u"not available"));
    EXPECT_FALSE(TStringCore::join(messages, u"").contains(u"StackWalker"));
}
