#include "Rows.h"
#include "vansys/TPathCore.h"

#include <filesystem>
#include <string>
#include <vector>

#if defined(VANSYS_BENCH_BOOST_FILESYSTEM)
#    include <boost/filesystem/path.hpp>
#endif

// The peers hold the text of a path in bytes, the library in UTF-16: each is given text of its own kind.

namespace bench
{

namespace
{

struct OwnPath
{
    static constexpr char const *Name = OwnName;
    using Path = TPathCore;
    using String = TStringCore;

    static Path FromElements(std::vector<String> const &elements) { return Path::fromVector(elements); }

    static Path Filename(Path const &path) { return path.Filename(); }
    static String Extension(Path const &path) { return path.Extension(); }
    static Path Parent(Path const &path) { return path.Parent(); }

    static PathElements ElementsOf(Path const &path) { return path.Elements(); }
    static std::size_t Length(std::u16string_view element) { return element.size(); }
};

/// The peers have the same interface.
template <class PeerPath>
struct PeerOf
{
    using Path = PeerPath;
    using String = std::string;

    static Path FromElements(std::vector<String> const &elements)
    {
        Path path;
        for (String const &element : elements)
            path /= element;
        return path;
    }

    static Path Filename(Path const &path) { return path.filename(); }
    static Path Extension(Path const &path) { return path.extension(); }
    static Path Parent(Path const &path) { return path.parent_path(); }

    static Path const &ElementsOf(Path const &path) { return path; }
    static std::size_t Length(Path const &element) { return element.native().size(); }
};

struct StdPath : PeerOf<std::filesystem::path>
{
    static constexpr char const *Name = "std::filesystem::path";
};

#if defined(VANSYS_BENCH_BOOST_FILESYSTEM)

struct BoostPath : PeerOf<boost::filesystem::path>
{
    static constexpr char const *Name = "boost::filesystem::path";
};

#endif

constexpr char Text[] = "/usr/share/dictionaries/words.txt"; // "/" and four names
std::vector<char const *> const Elements = {"/", "usr", "share", "dictionaries", "words.txt"};

/// Adds a row with a case for each class. `body` is called with the state and a peer.
template <class Body>
void AddRow(Rows &rows, char const *operation, double target, Body body)
{
    rows.push_back({"path", operation, Target{target, {StdPath::Name, "boost::filesystem::path"}}});
    auto const add = [&](auto peer)
    { AddCase(rows.back(), peer.Name, [=](benchmark::State &state) { body(state, peer); }); };
    add(OwnPath());
    add(StdPath());
#if defined(VANSYS_BENCH_BOOST_FILESYSTEM)
    add(BoostPath());
#endif
}

/// Makes a path of a string that the caller has, and asks it.
template <class Query>
void AddQueryRow(Rows &rows, char const *operation, Query query)
{
    AddRow(rows, operation, 1.5,
           [query](benchmark::State &state, auto peer)
           {
               typename decltype(peer)::String text = Text;
               for (auto _ : state)
               {
                   benchmark::DoNotOptimize(text);
                   typename decltype(peer)::Path const path(text);
                   auto answer = query(peer, path);
                   benchmark::DoNotOptimize(answer);
               }
           });
}

} // namespace

void AddPathRows(Rows &rows)
{
    AddRow(rows, "construct from 5 strings", 2.0,
           [](benchmark::State &state, auto peer)
           {
               std::vector<typename decltype(peer)::String> elements(Elements.begin(), Elements.end());
               for (auto _ : state)
               {
                   benchmark::DoNotOptimize(elements);
                   auto path = peer.FromElements(elements);
                   benchmark::DoNotOptimize(path);
               }
           });
    AddQueryRow(rows, "construct from a string of 5 elements", [](auto, auto const &path) { return &path; });
    rows.back().target->ratio = 2.0;
    AddRow(rows, "append two elements", 1.5,
           [](benchmark::State &state, auto peer)
           {
               using Path = typename decltype(peer)::Path;
               Path const folder = "/usr/share";
               Path const name = "dictionaries";
               Path const file = "words.txt";
               for (auto _ : state)
               {
                   Path path = folder / name / file;
                   benchmark::DoNotOptimize(path);
               }
           });
    AddQueryRow(rows, "construct, file name",
                [](auto peer, auto const &path) { return peer.Filename(path); });
    AddQueryRow(rows, "construct, extension",
                [](auto peer, auto const &path) { return peer.Extension(path); });
    AddQueryRow(rows, "construct, parent", [](auto peer, auto const &path) { return peer.Parent(path); });
    auto const iterate = [](auto peer, auto const &elements)
    {
        std::size_t length = 0;
        for (auto const &element : elements)
            length += peer.Length(element);
        return length;
    };
    AddQueryRow(rows, "construct, iterate 5 elements",
                [=](auto peer, auto const &path) { return iterate(peer, peer.ElementsOf(path)); });
    rows.back().target->ratio = 1.0;
    // Where the text has been searched before: by the constructor of a peer, by `Elements` of the library.
    AddRow(rows, "iterate 5 elements", 1.0,
           [=](benchmark::State &state, auto peer)
           {
               typename decltype(peer)::Path path = Text;
               auto &&elements = peer.ElementsOf(path);
               for (auto _ : state)
               {
                   benchmark::DoNotOptimize(elements);
                   benchmark::DoNotOptimize(iterate(peer, elements));
               }
           });
    // The library searches the text here, which the peers have done before.
    AddRow(rows, "search for and iterate 5 elements", 0.0,
           [=](benchmark::State &state, auto peer)
           {
               typename decltype(peer)::Path path = Text;
               for (auto _ : state)
               {
                   benchmark::DoNotOptimize(path);
                   benchmark::DoNotOptimize(iterate(peer, peer.ElementsOf(path)));
               }
           });
    rows.back().target.reset();
}

} // namespace bench
