#include "vansys/TPathCore.h"

#include "path/PathContradiction.h"
#include "support/FailureMessage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

using Path = TPathCore;

static_assert(std::is_nothrow_move_constructible_v<Path> && !std::is_convertible_v<Path, bool>);
#if defined(__cpp_lib_concepts)
static_assert(std::bidirectional_iterator<Path::iterator>);
#endif

namespace
{

/// What there is to ask of a path: root name, root directory, parent, file name, stem, extension, what it is
/// and has, share name, object name, elements.
TStringCore Describe(Path const &path)
{
    std::pair<char const *, bool> const flags[] = {
        {"A", path.IsAbsolute()},       {"R", path.IsRelative()}, {"U", path.IsUNC()},
        {"X", path.IsExtendedLength()}, {"D", path.IsDots()},     {"F", path.HasFilename()},
        {"E", path.HasExtension()},     {"S", path.HasStem()},    {"O", path.HasUNCObjectName()},
        {"$", path.IsAdminShare()}};
    TStringCore kind;
    for (auto const &[letter, isSet] : flags)
        kind.append(isSet ? letter : "");
    if (path.IsAdminShare())
        kind.append(path.AdminShareDriveLetter());
    EXPECT_EQ(FindContradiction(path), nullptr);
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
        {u"/b", u"|/|/|b|b||FS|||/ b"},
        {u"a", u"|||a|a||RF|||a"},
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

TEST(TPathCore, BecomesGenericWhateverItIsMadeOf)
{
    // Texts and paths in turn.
    std::vector<TStringCore> const rows =
        TStringCore(u"C:\\dir\\|C:/dir|C:\\|C:/|\\\\?\\C:\\|//?/C:/|a//|a/|a\\/\\|a//|\\\\srv\\|//srv/|"
                    u"//srv/a/|//srv/a|////|///|||a\\path that\\is/not\\inline\\|a/path that/is/not/inline")
            .split(u"|");
    ASSERT_EQ(rows.size(), 20u);
    for (std::size_t i = 0; i < rows.size(); i += 2)
    {
        TStringCore const &text = rows[i];
        TStringCore const &generic = rows[i + 1];
        std::vector<wchar_t> const wide = text.toWCharVector();
        for (Path const &path :
             {Path(text), Path(TStringCore(text.constData())), Path(text.constData()), Path(wide.data()),
              Path(text.toStdUString().c_str()), Path(text.toStdString().c_str()), Path::fromWindows(text)})
            EXPECT_EQ(path.GenericString(), generic);
        EXPECT_EQ(Path(text).NativeString(), TStringCore(generic).replaceAnyOf(u'/', u'\\'));
    }
}

TEST(TPathCore, IsPutTogetherAndEdited)
{
    EXPECT_EQ(Texts(Path(u"a").Append(u"b"), Path(u"a").Concat(u"/").Append(u"b"), Path(u"a") / Path(u"/b"),
                    Path() / L"b", Path("a") / Path(), Path(u"C:") /= "b", Path(u"x").Assign(u"a/b")),
              u"a/b a/b a/b b a C:/b a/b");
    EXPECT_EQ(Texts(Path(u"a") += u"b", Path(u"a") + Path(u"b"), Path(u"a") + TStringCore(u"\\b\\"),
                    Path(u"a") + L"b/" + u"c\\d" + "/", Path(u"a") + L'\\' + u'\\' + '.',
                    Path::fromVector({u"C:", u"\\", u"a", u"b\\", u"", u"c"})),
              u"ab ab a/b abc/d/ a//. C:/a/b/c");
    EXPECT_EQ(Texts(Path(u"a/b").RemoveFilename(), Path(u"/b").RemoveFilename(),
                    Path(u"C:/b").RemoveFilename(), Path(u"b").RemoveFilename(),
                    Path(u"C:b").RemoveFilename(), Path(u"//srv").RemoveFilename(),
                    Path(u"C:/").RemoveFilename()),
              u"a / C:/  C / C:/");
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
}

TEST(TPathCore, SwapLeavesTheOtherInNativeForm)
{
    Path a = u"a/b";
    Path b = u"c/d";
    a.Swap(b);
    EXPECT_TRUE(a.GenericString() == u"c/d" && b.GenericString() == u"a\\b" && b.size() == 1);
    a.Swap(a);
    EXPECT_EQ(a.GenericString(), u"c\\d");
    Path trailing = Path(u"a") + u"/" + u"/";
    trailing.Swap(b);
    EXPECT_EQ(b.GenericString(), u"a\\") << "made generic before it is made native";
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
    EXPECT_LT(std::pair(Path(u"a/b"), 1), std::pair(Path(u"aA"), 1))
        << "the order is not that of native texts";
    EXPECT_EQ((std::set<Path>{lower, upper, other}.size()), 3u);
    EXPECT_EQ((std::unordered_set<Path>{lower, upper, other}.size()), 2u);
    EXPECT_EQ((std::unordered_set<Path, PathHashExact, PathEqualExact>{lower, upper, lower}.size()), 2u);
    EXPECT_NE(std::hash<Path>()(upper), std::hash<Path>()(other));
}

TEST(TPathCore, HasLongAndShortNamesOnDisk)
{
    Path const folder = std::filesystem::current_path().u16string().c_str();
    TStringCore const name = folder.NativeLongPath();
    EXPECT_EQ(Path(name), folder);
    EXPECT_EQ(Path(Path(folder.NativeShortPath()).NativeLongPath()), folder);
    EXPECT_EQ((folder / u"none" / u"x.y").NativeLongPath(), TStringCore(name).append(u"\\none\\x.y"));
    EXPECT_EQ(Path(u"//?").Concat(u"/").Concat(folder).NativeLongPath(),
              TStringCore(u"\\\\?\\").append(name));
    EXPECT_EQ(Path().NativeLongPath(), u"");
    EXPECT_EQ((folder / TStringCore(u"a\0b", 3)).NativeShortPath(), u"");
    // What other systems say of such a name is theirs to choose.
    Path const tooLong = folder / TStringCore(u'x', 300);
    EXPECT_TRUE(std::filesystem::path::preferred_separator == '\\' || tooLong.NativeLongPath().isEmpty());
}

TEST(TPathCoreIterator, StepsAndReportsItsEnds)
{
    constexpr char16_t AtEnd[] = u"TPathCore::iterator trying to increment beyond end.";
    constexpr char16_t AtBegin[] = u"TPathCore::iterator trying to decrement beyond beginning.";
    Path const path = u"C:/a//b/";
    Path const same = path;
    EXPECT_TRUE(path.front() == u"C:" && path.back() == u"b" && (Path(u"a/b") + u"/" + u"/").back() == u"b");
    EXPECT_TRUE(path.begin() != same.begin() && path.begin() == path.begin() && path.begin() != path.end());
    Path::iterator at = path.begin();
    EXPECT_TRUE(*at++ == u"C:" && *++at == u"a" && *at-- == u"a" && at->length() == 1 && *--at == u"C:");
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { --at; }), AtBegin);
    EXPECT_EQ(*at, u"C:") << "a step that throws is not taken";
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { ++path.end(); }), AtEnd);
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { (void)Path().back(); }), AtBegin);
    EXPECT_EQ(Path().front(), u"");

    Path::iterator none;
    EXPECT_TRUE(none == Path::iterator() && *none == u"" && none != path.begin());
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { none++; }), AtEnd);
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { none--; }), AtBegin);
}

TEST(TPathCoreIterator, OfAPathThatHasChanged)
{
    Path path = u"abc/de/f";
    Path::iterator at = ++path.begin();
    path = u"a";
    EXPECT_EQ(*at, u"de");
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { ++at; }), u"Element position out of range.");
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { --at; }), u"Separator position out of range.");
    path = u"abcdefg";
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { --at; }), u"TPathCore::iterator out of sync in prev.");
    EXPECT_TRUE(*++at == u"" && at == path.end());
}

/// Not inlined, so that it has a frame.
[[gnu::noinline]] static Path::Exception FailureWithCallStack()
{
    return Path::Exception(u"message", true);
}

TEST(TPathCoreException, KeepsItsTypeAndItsCallStack)
{
    std::unique_ptr<VantrelException> const clone(Path::Exception(u"message", false).Clone());
    EXPECT_EQ(FailureMessage<Path::Exception>([&] { clone->Throw(); }), u"message");

    std::vector<TStringCore> const messages = FailureWithCallStack().GetMessagesVector();
    ASSERT_GT(messages.size(), 4u);
    EXPECT_EQ(messages[0], u"message");
    EXPECT_TRUE(messages[1].startsWith(u"0x00000000 ") && messages[1].contains(u"Exception"));
    // Where programs have no symbols, there is but the address.
    EXPECT_TRUE(messages[2].contains(u"FailureWithCallStack") || messages[2].contains(u"not available"));
    EXPECT_FALSE(TStringCore::join(messages, u"").contains(u"StackWalker"));
}
