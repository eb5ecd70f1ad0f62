// Random paths contradict neither themselves nor, where the rules are the same, the standard library.

#include "vansys/TPathCore.h"

#include "path/PathContradiction.h"
#include "support/TestText.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{

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
TStringCore Text(std::filesystem::path const &path)
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
    RandomText random(u"ab\u00E9.//cde\u20ACfgh..ijk");
    RandomText names(u"ab.\u20AC");
    for (int round = 0; round < Rounds; ++round)
    {
        std::u16string const text = random.text(40);
        std::u16string const added = std::u16string(u"n/n").append(names.text(20));
        if (text.starts_with(u"//"))
            continue; // names a computer
        TPathCore const path = Tight(text);
        std::filesystem::path const peer = path.GenericString().toStdUString();
        SCOPED_TRACE(testing::PrintToString(path.GenericString()));
        std::vector<std::u16string> elements;
        for (std::filesystem::path const &element : peer)
            elements.push_back(element.generic_u16string());
        std::erase(elements, u""); // behind a separator at the end
        ASSERT_TRUE(
            std::equal(elements.begin(), elements.end(), path.Elements().begin(), path.Elements().end()));
        ASSERT_EQ(path.Filename().GenericString(), Text(peer.filename()));
        ASSERT_EQ(path.HasRootDirectory(), peer.has_root_directory());
        if (!Text(peer.filename()).startsWith(u"..")) // of such, it takes the second dot for the last
        {
            ASSERT_EQ(path.Stem().GenericString(), Text(peer.stem()));
            TStringCore const dot = path.HasExtension() ? u"." : u"";
            ASSERT_EQ(TStringCore(dot).append(path.Extension()), Text(peer.extension()));
        }
        if (text.find(u"//") == text.npos && text != u"/")
        {
            ASSERT_EQ(path.Parent().GenericString(), Text(peer.parent_path()));
            ASSERT_EQ(TPathCore::fromVector(path.toVector()).GenericString(), path.GenericString());
            ASSERT_EQ((path / Tight(added)).GenericString(), Text(peer / added));
        }
    }
}
