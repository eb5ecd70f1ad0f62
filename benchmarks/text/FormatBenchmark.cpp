#include "string/StringPeers.h"
#include "vansys/TFormatLiteral.h"

#include <string>

#if defined(VANSYS_BENCH_ABSEIL)
#    include <absl/base/config.h>
#    include <absl/strings/substitute.h>
#endif

// While running, each of them reads the format string anew for each text. The arguments are strings of the
// peer's own class; they go through DoNotOptimize in every round, as the results do.

namespace bench
{

namespace
{

/// The text at once.
struct OwnText : Vansys
{
    static String Format(String const &a, String const &b, String const &c)
    {
        return FormatText(u"%1 %2 %3", a, b, c);
    }
};

/// By way of an object that keeps the format string and the arguments, as messages with a redacted form do.
struct OwnFormat : Vansys
{
    static String Format(String const &a, String const &b, String const &c)
    {
        return TFormatStringCore(u"%1 %2 %3").arg(a, b, c).result();
    }
};

#if defined(VANSYS_BENCH_QT)

struct QtFormat : Qt
{
    static String Format(String const &a, String const &b, String const &c)
    {
        return QString("%1 %2 %3").arg(a, b, c);
    }
};

#endif

#if defined(VANSYS_BENCH_ABSEIL)

struct AbseilFormat
{
    static constexpr char const *Name = "absl::Substitute";
    using String = std::string;

    static String FromUtf8(char const *bytes) { return bytes; }

    static String Format(String const &a, String const &b, String const &c)
    {
        return absl::Substitute("$0 $1 $2", a, b, c);
    }
};

#endif

struct Arguments
{
    char const *first;
    char const *second;
    char const *third;
};

/// Held inline by the classes that can, but for the text that comes of them.
constexpr Arguments Short = {"17", "files", "in reports"};

/// On the heap.
constexpr Arguments Long = {"cannot open the file for reading", "/home/user/reports/2024/may.txt",
                            "no such file or directory"};

template <class Peer>
void AddFormatCase(Row const &row, Arguments const &arguments)
{
    AddCase(row, Peer::Name,
            [arguments](benchmark::State &state)
            {
                auto a = Peer::FromUtf8(arguments.first);
                auto b = Peer::FromUtf8(arguments.second);
                auto c = Peer::FromUtf8(arguments.third);
                for (auto _ : state)
                {
                    benchmark::DoNotOptimize(a);
                    benchmark::DoNotOptimize(b);
                    benchmark::DoNotOptimize(c);
                    auto text = Peer::Format(a, b, c);
                    benchmark::DoNotOptimize(text);
                }
            });
}

template <class Own>
void BenchmarkFormat(Rows &rows, std::string const &operation, std::optional<Target> const &target,
                     Arguments const &arguments)
{
    rows.push_back({"format", operation, target});
    AddFormatCase<Own>(rows.back(), arguments);
#if defined(VANSYS_BENCH_QT)
    AddFormatCase<QtFormat>(rows.back(), arguments);
#endif
#if defined(VANSYS_BENCH_ABSEIL)
    AddFormatCase<AbseilFormat>(rows.back(), arguments);
#endif
}

} // namespace

void AddFormatRows(Rows &rows)
{
#if defined(VANSYS_BENCH_ABSEIL)
    benchmark::AddCustomContext("absl::Substitute", "Abseil " + std::to_string(ABSL_LTS_RELEASE_VERSION));
#else
    benchmark::AddCustomContext("absl::Substitute", "left out: Abseil was not found when this was built");
#endif
    Target const target{1.0, {"QString", "absl::Substitute"}};
    BenchmarkFormat<OwnText>(rows, "format three short strings", target, Short);
    BenchmarkFormat<OwnText>(rows, "format three long strings", target, Long);
    BenchmarkFormat<OwnFormat>(rows, "the same by TFormatStringCore, short", {}, Short);
    BenchmarkFormat<OwnFormat>(rows, "the same by TFormatStringCore, long", {}, Long);
}

} // namespace bench
