#include "string/StringPeers.h"

#include <string>
#include <utility>

#if defined(VANSYS_BENCH_ICU)
#    include <unicode/ustring.h>
#endif

// Inputs and results go through DoNotOptimize, as in string/TStringCoreBenchmark.cpp.

namespace bench
{

namespace
{

// 64 units each.
constexpr char16_t Ascii[] = u"The Ferry leaves at a quarter past seven, whatever Nobody says, ";
constexpr char16_t AsciiWithI[] = u"In the End, it is I who sees IT: the letter with rules of its ow";
constexpr char16_t Greek[] = u"Ο Άνεμος και ο Ήλιος μάλωναν για το ποιος από τους δύο είναι πιο";
constexpr char16_t GreekCapitals[] = u"Ο ΑΝΕΜΟΣ ΚΑΙ Ο ΗΛΙΟΣ ΜΑΛΩΝΑΝ ΓΙΑ ΤΟ ΠΟΙΟΣ ΑΠΟ ΤΟΥΣ ΔΥΟ ΕΙΝΑΙ ΠΙΟ";
constexpr char16_t Russian[] = u"Однажды Солнце и сердитый северный Ветер затеяли спор о том, кто";

template <std::size_t Size>
constexpr int LengthOf(char16_t const (&)[Size])
{
    static_assert(Size == 64 + 1);
    return 64;
}

/// How each class maps and compares.
int CompareFolded(TStringCore const &a, TStringCore const &b)
{
    return a.compare(b, TStringCore::CaseInsensitive);
}

TStringCore Lower(TStringCore const &text)
{
    return text.toLower();
}

TStringCore Upper(TStringCore const &text)
{
    return text.toUpper();
}

#if defined(VANSYS_BENCH_QT)

int CompareFolded(QString const &a, QString const &b)
{
    return a.compare(b, ::Qt::CaseInsensitive);
}

QString Lower(QString const &text)
{
    return text.toLower();
}

QString Upper(QString const &text)
{
    return text.toUpper();
}

#endif

#if defined(VANSYS_BENCH_ICU)

int CompareFolded(icu::UnicodeString const &a, icu::UnicodeString const &b)
{
    return a.caseCompare(b, U_FOLD_CASE_DEFAULT);
}

icu::UnicodeString Lower(icu::UnicodeString const &text)
{
    return icu::UnicodeString(text).toLower();
}

icu::UnicodeString Upper(icu::UnicodeString const &text)
{
    return icu::UnicodeString(text).toUpper();
}

/// ICU's function for plain text, with a buffer that is there already.
auto StrToLower(char16_t const *units, int length)
{
    return [units, length](benchmark::State &state)
    {
        char16_t const *text = units;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(text);
            char16_t result[100];
            UErrorCode status = U_ZERO_ERROR;
            int count = u_strToLower(result, 100, text, length, nullptr, &status);
            benchmark::DoNotOptimize(result);
            benchmark::DoNotOptimize(count);
        }
    };
}

#endif

template <class Body, class... Peers>
void AddCases(Row const &row, Body body, PeerList<Peers...>)
{
    (AddCase(row, Peers::Name, [body](benchmark::State &state) { body(state, Peers()); }), ...);
}

/// Two texts that are equal but for the case of every letter.
void BenchmarkCompareFolded(Rows &rows, std::string const &name, char16_t const *units, int length)
{
    rows.push_back({"case", "case-insensitive compare, 64 units of " + name, Target{2.0, {"QString"}}});
    auto const body = [units, length](benchmark::State &state, auto peer)
    {
        TStringCore const text(units, length);
        auto const lower = text.toLower();
        auto const upper = text.toUpper();
        auto a = peer.FromUnits(lower, length);
        auto b = peer.FromUnits(upper, length);
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(a);
            benchmark::DoNotOptimize(b);
            int result = CompareFolded(a, b);
            benchmark::DoNotOptimize(result);
        }
    };
    AddCases(rows.back(), body, Utf8Peers);
}

void BenchmarkLower(Rows &rows, std::string const &name, char16_t const *units, int length,
                    std::optional<double> ratio)
{
    std::optional<Target> target;
    if (ratio)
        target = Target{*ratio, {"QString", "icu::UnicodeString", "u_strToLower"}};
    rows.push_back({"case", "toLower, 64 units of " + name, target});
    auto const body = [units, length](benchmark::State &state, auto peer)
    {
        auto text = peer.FromUnits(units, length);
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(text);
            auto result = Lower(text);
            benchmark::DoNotOptimize(result);
        }
    };
    AddCases(rows.back(), body, Utf8Peers);
#if defined(VANSYS_BENCH_ICU)
    AddCase(rows.back(), "u_strToLower", StrToLower(units, length));
#endif
}

void BenchmarkUpper(Rows &rows, std::string const &name, char16_t const *units, int length)
{
    rows.push_back({"case", "toUpper, 64 units of " + name, {}});
    auto const body = [units, length](benchmark::State &state, auto peer)
    {
        auto text = peer.FromUnits(units, length);
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(text);
            auto result = Upper(text);
            benchmark::DoNotOptimize(result);
        }
    };
    AddCases(rows.back(), body, Utf8Peers);
}

} // namespace

void AddCaseRows(Rows &rows)
{
    BenchmarkCompareFolded(rows, "ASCII", Ascii, LengthOf(Ascii));
    BenchmarkCompareFolded(rows, "Greek", Greek, LengthOf(Greek));
    BenchmarkLower(rows, "ASCII", Ascii, LengthOf(Ascii), 1.5);
    BenchmarkLower(rows, "ASCII with I", AsciiWithI, LengthOf(AsciiWithI), 1.5);
    BenchmarkLower(rows, "Greek", Greek, LengthOf(Greek), 1.0);
    BenchmarkLower(rows, "Greek capitals", GreekCapitals, LengthOf(GreekCapitals), 1.0);
    BenchmarkLower(rows, "Russian", Russian, LengthOf(Russian), {});
    BenchmarkUpper(rows, "ASCII", Ascii, LengthOf(Ascii));
    BenchmarkUpper(rows, "Greek", Greek, LengthOf(Greek));
}

} // namespace bench
