// Random paths contradict neither themselves nor, where the rules are the same, the standard library.

#include "vansys/TPathCore.h"
#include "vansys/TPathCoreFilesystem.h"

#include "path/PathContradiction.h"
#include "support/TestText.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{

namespace fs = std::filesystem;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int Rounds = 5000;
#else
constexpr int Rounds = 200000;
#endif

/// In a block that ends with the text, so that the address sanitizer sees who reads on.
TStringCore Tight(std::u16string const &text)
{
    TStringCore result{std::u16string_view(text)};
    result.squeeze();
    return result;
}

/// With "/", as it is asked of both.
TStringCore Text(fs::path const &path)
{
    return TStringCore(path.generic_u16string().c_str());
}

} // namespace

TEST(RandomPath, DoesNotContradictItself)
{
    RandomText random(u"aB\u00E9c$.?u//::\\nab\uFFFFcdefgh");
    char16_t const *const prefixes[] = {u"", u"", u"C:", u"//", u"\\\\?\\", u"//?/UNC/", u"//?/z:", u"/"};
    for (int round = 0; round < Rounds; ++round)
    {
        std::u16string text = prefixes[random.number(0, 7)] + random.text(round % 50 == 0 ? 300 : 40);
        if (round % 10 == 0)
            text.insert(text.size() / 2, static_cast<std::size_t>(random.number(0, 200)), u'x');
        TPathCore path = Tight(text);
        if (round % 3 == 0)
            path.Concat(TPathCore(Tight(random.text(20)))); // what constructors do not give
        ASSERT_STREQ(FindContradiction(path), nullptr) << testing::PrintToString(path.GenericString());
        std::vector<TStringCore> const parts = {Tight(random.text(8)), Tight(random.text(8)), Tight(text)};
        ASSERT_EQ(TPathCore::fromVector(parts).GenericString(),
                  TPathCore(parts[0]).Append(parts[1]).Append(parts[2]).GenericString());
    }
}

TEST(RandomPath, IsWhatTheStandardLibraryHas)
{
    RandomText random(u"ab\u00E9././\u20AC.");
    RandomText names(u"ab.\u20AC");
    char16_t const *const prefixes[] = {u"", u"a", u"/a"};
    // It keeps a separator at the end.
    auto const normal = [](fs::path const &path)
    { return PathToFilesystem(TPathCore(Text(path.lexically_normal()))); };
    for (int round = 0; round < Rounds; ++round)
    {
        int const prefix = random.number(0, 2);
        std::u16string const text = prefixes[prefix] + random.text(round % 8 == 0 ? 80 : 16);
        std::u16string const added = std::u16string(u"n/n").append(names.text(20));
        if (text.starts_with(u"//"))
            continue; // names a computer
        TPathCore const path = Tight(text);
        fs::path const peer = path.GenericString().toStdUString();
        SCOPED_TRACE(testing::PrintToString(path.GenericString()));
        std::vector<TStringCore> elements;
        for (fs::path const &element : peer)
            if (!element.empty()) // behind a separator at the end
                elements.push_back(Text(element));
        ASSERT_EQ(path.toVector(), elements);
        ASSERT_EQ(path.Filename().GenericString(), Text(peer.filename()));
        ASSERT_EQ(path.HasRootDirectory(), peer.has_root_directory());
        if (!Text(peer.filename()).startsWith(u"..")) // of such, it takes the second dot for the last
        {
            ASSERT_EQ(path.Stem().GenericString(), Text(peer.stem()));
            ASSERT_EQ(path.HasExtension(), peer.has_extension());
            ASSERT_EQ(path.Extension(), Text(peer.extension()).mid(1));
        }
        if (text.find(u"//") == text.npos && text != u"/")
        {
            ASSERT_EQ(path.Parent().GenericString(), Text(peer.parent_path()));
            ASSERT_EQ(TPathCore::fromVector(path.toVector()).GenericString(), path.GenericString());
            ASSERT_EQ((path / Tight(added)).GenericString(), Text(peer / added));
        }
        ASSERT_EQ(PathFromFilesystem(PathToFilesystem(path)).LexicallyNormal(), path.LexicallyNormal());
        if (prefix == 0)
            continue; // the ways to or from nothing differ
        TPathCore const base = Tight(prefixes[random.number(1, 2)] + random.text(16));
        SCOPED_TRACE(testing::PrintToString(base.GenericString()));
        fs::path const to = normal(peer), from = normal(base.GenericString().toStdUString());
        TPathCore const relative = path.RelativeTo(base);
        ASSERT_EQ(path.LexicallyNormal().GenericString(), Text(to));
        // From a folder above, and on Windows from one without a root directory to one with, its way does not
        // lead there.
        if (!Text(from).startsWith(u"..") && to.has_root_directory() == from.has_root_directory())
        {
            ASSERT_EQ(relative.GenericString(), Text(to.lexically_relative(from).lexically_normal()));
        }
        TPathCore const there = relative.IsEmpty() ? path : base / relative;
        ASSERT_EQ(there.LexicallyNormal().GenericString(), Text(to));
    }
}
