#include "string/SampleText.h"
#include "string/StringPeers.h"

#include <string>
#include <utility>

// Inputs and results go through DoNotOptimize, the inputs in every round: otherwise the compiler would see
// through the classes whose code is in headers, and hoist or drop work that it cannot drop for the others.

namespace bench
{

namespace
{

/// Letters to make strings of. As long as the longest one.
constexpr char16_t Letters[] = u"The quick brown fox jumps over a lazy dog.";

/// 4 KiB: more than any inline buffer, less than the first-level cache, with the result in UTF-16.
constexpr std::size_t TextBytes = 4096;

template <class Body, class... Peers>
void AddCases(Row const &row, Body body, PeerList<Peers...>)
{
    (AddCase(row, Peers::Name, [body](benchmark::State &state) { body(state, Peers()); }), ...);
}

void BenchmarkConstructFromUnits(Rows &rows)
{
    rows.push_back({"string", "construct from a 14-unit text", Target{3.0, {"QString"}}});
    auto const body = [](benchmark::State &state, auto peer)
    {
        char16_t const *units = Letters;
        int count = 14;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(units);
            benchmark::DoNotOptimize(count);
            auto text = peer.FromUnits(units, count);
            benchmark::DoNotOptimize(text);
        }
    };
    AddCases(rows.back(), body, AllPeers);
}

/// Literals stay visible to the compiler: a class that can count their characters at compile time may do so.
void BenchmarkConstructFromLiteral(Rows &rows)
{
    rows.push_back({"string", "construct from a 10-byte UTF-8 literal", {}});
    auto const tenBytes = [](benchmark::State &state, auto peer)
    {
        for (auto _ : state)
        {
            auto text = peer.FromUtf8("file count");
            benchmark::DoNotOptimize(text);
        }
    };
    AddCases(rows.back(), tenBytes, Utf8Peers);

    rows.push_back({"string", "construct from a 40-byte UTF-8 literal", {}});
    auto const fortyBytes = [](benchmark::State &state, auto peer)
    {
        for (auto _ : state)
        {
            auto text = peer.FromUtf8("no such file or directory in this folder");
            benchmark::DoNotOptimize(text);
        }
    };
    AddCases(rows.back(), fortyBytes, Utf8Peers);
}

void BenchmarkCopy(Rows &rows)
{
    auto const copyOf = [](int count)
    {
        return [count](benchmark::State &state, auto peer)
        {
            auto source = peer.FromUnits(Letters, count);
            for (auto _ : state)
            {
                benchmark::DoNotOptimize(source);
                auto copy = source;
                benchmark::DoNotOptimize(copy);
            }
        };
    };
    rows.push_back({"string", "copy a shared heap string (40 units)", Target{0.95, {"QString"}}});
    AddCases(rows.back(), copyOf(40), AllPeers);
    rows.push_back({"string", "copy a 10-unit string", Target{1.0, {"QString", "std::u16string"}}});
    AddCases(rows.back(), copyOf(10), AllPeers);
}

/// There and back, so that each round begins with the same strings.
void BenchmarkMove(Rows &rows)
{
    auto const moveOf = [](int count)
    {
        return [count](benchmark::State &state, auto peer)
        {
            auto source = peer.FromUnits(Letters, count);
            for (auto _ : state)
            {
                benchmark::DoNotOptimize(source);
                auto target = std::move(source);
                benchmark::DoNotOptimize(target);
                source = std::move(target);
            }
        };
    };
    rows.push_back({"string", "move a 10-unit string and back", {}});
    AddCases(rows.back(), moveOf(10), AllPeers);
    rows.push_back({"string", "move a 40-unit string and back", {}});
    AddCases(rows.back(), moveOf(40), AllPeers);
}

void BenchmarkAppend(Rows &rows)
{
    rows.push_back({"string", "append one unit, 1000 times", Target{0.9, {"std::u16string"}}});
    auto const body = [](benchmark::State &state, auto peer)
    {
        char16_t unit = u'a';
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(unit);
            typename decltype(peer)::String text;
            for (int i = 0; i < 1000; ++i)
                peer.Append(text, unit);
            benchmark::DoNotOptimize(text);
        }
    };
    AddCases(rows.back(), body, AllPeers);
}

void BenchmarkUtf8(Rows &rows, std::string const &name, Script script, double ratio)
{
    Target const target{ratio, {"QString", "icu::UnicodeString"}};
    std::string const utf8 = SampleText(script, TextBytes);

    rows.push_back({"string", "UTF-8 decode, 4 KiB " + name, target});
    auto const decode = [utf8](benchmark::State &state, auto peer)
    {
        char const *bytes = utf8.data();
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(bytes);
            auto text = peer.FromUtf8(bytes, static_cast<int>(utf8.size()));
            benchmark::DoNotOptimize(text);
        }
    };
    AddCases(rows.back(), decode, Utf8Peers);

    rows.push_back({"string", "UTF-8 encode, 4 KiB " + name, target});
    auto const encode = [utf8](benchmark::State &state, auto peer)
    {
        auto text = peer.FromUtf8(utf8.data(), static_cast<int>(utf8.size()));
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(text);
            auto bytes = peer.ToUtf8(text);
            benchmark::DoNotOptimize(bytes);
        }
    };
    AddCases(rows.back(), encode, Utf8Peers);
}

} // namespace

void AddStringRows(Rows &rows)
{
#if defined(VANSYS_BENCH_QT)
    benchmark::AddCustomContext("QString", std::string("Qt ") + qVersion());
#else
    benchmark::AddCustomContext("QString", "left out: Qt 6 was not found when this was built");
#endif
#if defined(VANSYS_BENCH_ICU)
    benchmark::AddCustomContext("icu::UnicodeString", "ICU " U_ICU_VERSION);
#else
    benchmark::AddCustomContext("icu::UnicodeString", "left out: ICU was not found when this was built");
#endif

    BenchmarkConstructFromUnits(rows);
    BenchmarkConstructFromLiteral(rows);
    BenchmarkCopy(rows);
    BenchmarkMove(rows);
    BenchmarkAppend(rows);
    BenchmarkUtf8(rows, "ASCII", Script::Ascii, 1.0);
    BenchmarkUtf8(rows, "mixed Latin", Script::MixedLatin, 1.2);
    BenchmarkUtf8(rows, "CJK", Script::Cjk, 1.2);
}

} // namespace bench
