#include "string/SampleText.h"
#include "string/StringPeers.h"

#include <string>
#include <string_view>
#include <vector>

#if defined(VANSYS_BENCH_QT)
#    include <QStringList>
#endif

namespace bench
{

namespace
{

struct OwnOperations : Vansys
{
    using Strings = std::vector<TStringCore>;

    static int IndexOf(String const &text, String const &needle) { return text.indexOf(needle); }

    static int IndexOf(String const &text, char16_t unit) { return text.indexOf(unit); }

    static int LastIndexOf(String const &text, String const &needle) { return text.lastIndexOf(needle); }

    static int IndexOfWithoutCase(String const &text, String const &needle)
    {
        return text.indexOf(needle, TStringCore::CaseInsensitive);
    }

    static int LastIndexOfWithoutCase(String const &text, String const &needle)
    {
        return text.lastIndexOf(needle, -1, TStringCore::CaseInsensitive);
    }

    static Strings Split(String const &text, char16_t separator) { return text.split(separator); }

    static String Join(Strings const &parts, String const &separator)
    {
        return String::join(parts, separator);
    }

    static void Replace(String &text, String const &before, String const &after)
    {
        text.replace(before, after);
    }
};

struct StdSearch : StdString
{
    static std::size_t IndexOf(std::u16string_view text, std::u16string_view needle)
    {
        return text.find(needle);
    }

    static std::size_t IndexOf(std::u16string_view text, char16_t unit) { return text.find(unit); }

    static std::size_t LastIndexOf(std::u16string_view text, std::u16string_view needle)
    {
        return text.rfind(needle);
    }
};

#if defined(VANSYS_BENCH_QT)

struct QtOperations : Qt
{
    using Strings = QStringList;

    static qsizetype IndexOf(String const &text, String const &needle) { return text.indexOf(needle); }

    static qsizetype IndexOf(String const &text, char16_t unit) { return text.indexOf(QChar(unit)); }

    static qsizetype LastIndexOf(String const &text, String const &needle)
    {
        return text.lastIndexOf(needle);
    }

    static qsizetype IndexOfWithoutCase(String const &text, String const &needle)
    {
        return text.indexOf(needle, 0, ::Qt::CaseInsensitive);
    }

    static qsizetype LastIndexOfWithoutCase(String const &text, String const &needle)
    {
        return text.lastIndexOf(needle, -1, ::Qt::CaseInsensitive);
    }

    static Strings Split(String const &text, char16_t separator) { return text.split(QChar(separator)); }

    static String Join(Strings const &parts, String const &separator) { return parts.join(separator); }

    static void Replace(String &text, String const &before, String const &after)
    {
        text.replace(before, after);
    }
};

#endif

constexpr auto Peers = PeerList<OwnOperations
#if defined(VANSYS_BENCH_QT)
                                ,
                                QtOperations
#endif
                                >();

constexpr auto SearchPeers = Plus<StdSearch>(Peers);

template <class Body, class... Peers>
void AddCases(Row const &row, Body body, PeerList<Peers...>)
{
    (AddCase(row, Peers::Name, [body](benchmark::State &state) { body(state, Peers()); }), ...);
}

constexpr std::size_t TextUnits = 4096; // 8 KiB

/// ASCII as units.
std::u16string Widen(std::string const &text)
{
    return std::u16string(text.begin(), text.end());
}

template <class Peer>
typename Peer::String Make(Peer peer, std::u16string_view text)
{
    return peer.FromUnits(text.data(), static_cast<int>(text.size()));
}

/// How a peer is asked for a text.
constexpr auto IndexOf = [](auto peer, auto const &text, auto const &needle)
{ return peer.IndexOf(text, needle); };
constexpr auto LastIndexOf = [](auto peer, auto const &text, auto const &needle)
{ return peer.LastIndexOf(text, needle); };
constexpr auto IndexOfWithoutCase = [](auto peer, auto const &text, auto const &needle)
{ return peer.IndexOfWithoutCase(text, needle); };
constexpr auto LastIndexOfWithoutCase = [](auto peer, auto const &text, auto const &needle)
{ return peer.LastIndexOfWithoutCase(text, needle); };

template <class Search, class... Peers>
void BenchmarkSearch(Rows &rows, std::string const &name, std::u16string const &text,
                     std::u16string const &sought, Search search, Target const &target,
                     PeerList<Peers...> peers)
{
    rows.push_back({"operations", name, target});
    auto const body = [=](benchmark::State &state, auto peer)
    {
        auto const haystack = Make(peer, text);
        auto const needle = Make(peer, sought);
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&haystack);
            benchmark::DoNotOptimize(search(peer, haystack, needle));
        }
    };
    AddCases(rows.back(), body, peers);
}

void BenchmarkSearches(Rows &rows)
{
    Target const target{2.0, {"QString", "std::u16string"}};
    Target const targetWithoutCase{1.0, {"QString"}};
    std::u16string const prose = Widen(SampleText(Script::Ascii, TextUnits));
    std::u16string const absent = u"search";
    BenchmarkSearch(rows, "indexOf of 6 units, absent from 8 KiB", prose, absent, IndexOf, target,
                    SearchPeers);
    BenchmarkSearch(rows, "lastIndexOf of 6 units, absent from 8 KiB", prose, absent, LastIndexOf, target,
                    SearchPeers);
    BenchmarkSearch(rows, "indexOf without case of 6 units, absent from 8 KiB", prose, absent,
                    IndexOfWithoutCase, targetWithoutCase, Peers);
    BenchmarkSearch(rows, "lastIndexOf without case of 6 units, absent from 8 KiB", prose, absent,
                    LastIndexOfWithoutCase, targetWithoutCase, Peers);

    std::u16string greek;
    while (greek.size() < TextUnits)
        greek += u"Ο Άνεμος και ο Ήλιος μάλωναν για το ποιος από τους δύο είναι πιο δυνατός. ";
    BenchmarkSearch(rows, "indexOf without case of 6 units, absent from 8 KiB of Greek", greek, u"ζητώντ",
                    IndexOfWithoutCase, targetWithoutCase, Peers);

    // A needle that nearly is at every other place.
    std::u16string pairs;
    while (pairs.size() < TextUnits)
        pairs += u"ab";
    std::u16string const nearlyPairs = pairs.substr(TextUnits / 2) + u"aabb";
    BenchmarkSearch(rows, "indexOf of what nearly is everywhere in 8 KiB", pairs, nearlyPairs, IndexOf,
                    target, SearchPeers);
    BenchmarkSearch(rows, "lastIndexOf of what nearly is everywhere in 8 KiB", pairs, nearlyPairs,
                    LastIndexOf, target, SearchPeers);
    BenchmarkSearch(rows, "indexOf without case of what nearly is everywhere in 8 KiB", pairs, nearlyPairs,
                    IndexOfWithoutCase, targetWithoutCase, Peers);

    rows.push_back({"operations", "indexOf of one unit, absent from 8 KiB", target});
    auto const unit = [prose](benchmark::State &state, auto peer)
    {
        auto const haystack = Make(peer, prose);
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&haystack);
            benchmark::DoNotOptimize(peer.IndexOf(haystack, u'#'));
        }
    };
    AddCases(rows.back(), unit, SearchPeers);
}

/// The first words of the prose, with a comma behind each but the last.
std::u16string Fields(int count)
{
    std::u16string fields = Widen(SampleText(Script::Ascii, TextUnits));
    for (std::size_t space = 0; count > 0; --count)
    {
        space = fields.find(u' ', space);
        fields[space] = u',';
        if (count == 1)
            fields.resize(space);
    }
    return fields;
}

void BenchmarkSplitAndJoin(Rows &rows)
{
    Target const target{1.2, {"QString"}};
    std::u16string const fields = Fields(100);

    rows.push_back({"operations", "split into 100 fields", target});
    auto const split = [fields](benchmark::State &state, auto peer)
    {
        auto const text = Make(peer, fields);
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&text);
            auto parts = peer.Split(text, u',');
            benchmark::DoNotOptimize(parts);
        }
    };
    AddCases(rows.back(), split, Peers);

    rows.push_back({"operations", "join of 100 fields", target});
    auto const join = [fields](benchmark::State &state, auto peer)
    {
        auto const parts = peer.Split(Make(peer, fields), u',');
        auto const separator = Make(peer, u", ");
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&parts);
            auto text = peer.Join(parts, separator);
            benchmark::DoNotOptimize(text);
        }
    };
    AddCases(rows.back(), join, Peers);
}

/// In a copy that shares with the original, as texts come.
void BenchmarkReplace(Rows &rows, std::string const &name, std::u16string const &before,
                      std::u16string const &after)
{
    rows.push_back({"operations", "replace all in 8 KiB, " + name, Target{1.2, {"QString"}}});
    std::u16string const prose = Widen(SampleText(Script::Ascii, TextUnits));
    auto const body = [=](benchmark::State &state, auto peer)
    {
        auto const original = Make(peer, prose);
        auto const old = Make(peer, before);
        auto const replacement = Make(peer, after);
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&original);
            auto text = original;
            peer.Replace(text, old, replacement);
            benchmark::DoNotOptimize(text);
        }
    };
    AddCases(rows.back(), body, Peers);
}

} // namespace

void AddOperationRows(Rows &rows)
{
    BenchmarkSearches(rows);
    BenchmarkSplitAndJoin(rows);
    BenchmarkReplace(rows, "growing", u"the", u"<the>");
    BenchmarkReplace(rows, "shrinking", u"the", u"a");
    BenchmarkReplace(rows, "one unit, growing", u" ", u"&nbsp;");
    BenchmarkReplace(rows, "one unit, of equal length", u" ", u"_");
}

} // namespace bench
