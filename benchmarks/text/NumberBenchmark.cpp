#include "string/StringPeers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <random>

namespace bench
{

namespace
{

/// Each round takes the next value of these, so that lengths and branches differ as they do in real data.
/// A power of two.
constexpr std::size_t ValueCount = 64;

template <class Value>
using Values = std::array<Value, ValueCount>;

struct OwnNumbers : Vansys
{
    static String Number(int value) { return String::number(value); }

    static String Number(double value) { return String::number(value, 'g', 6); }

    static int ToInt(String const &text) { return text.toInt(); }

    static double ToDouble(String const &text) { return text.toDouble(); }
};

#if defined(VANSYS_BENCH_QT)

struct QtNumbers : Qt
{
    static String Number(int value) { return QString::number(value); }

    static String Number(double value) { return QString::number(value, 'g', 6); }

    static int ToInt(String const &text) { return text.toInt(); }

    static double ToDouble(String const &text) { return text.toDouble(); }
};

#endif

/// Of 1 to 10 digits, every other one negative.
Values<int> Integers()
{
    std::mt19937 random(1);
    Values<int> values;
    for (std::size_t i = 0; i < ValueCount; ++i)
    {
        auto const magnitude = static_cast<int>((random() & 0x7FFFFFFF) >> i % 32);
        values[i] = i % 2 ? magnitude : -magnitude;
    }
    return values;
}

/// Integers, numbers with three decimals, fractions of 17 digits, and numbers of every order of magnitude.
Values<double> Doubles()
{
    std::mt19937_64 random(1);
    Values<double> values;
    for (std::size_t i = 0; i < ValueCount; ++i)
    {
        auto const mantissa = static_cast<double>(random() >> 11);
        double const kinds[] = {static_cast<double>(random() % 100'000),
                                static_cast<double>(random() % 1'000'000) / 1000, std::ldexp(mantissa, -53),
                                std::ldexp(mantissa, static_cast<int>(random() % 400) - 250)};
        values[i] = kinds[i % 4];
    }
    return values;
}

/// `operation` is called with the peer and an input that `input` has made of a value.
template <class Value, class Input, class Operation, class... Peers>
void AddCases(Row const &row, Values<Value> const &values, Input input, Operation operation,
              PeerList<Peers...>)
{
    auto const body = [values, input, operation](benchmark::State &state, auto peer)
    {
        std::array<decltype(input(peer, values[0])), ValueCount> inputs;
        for (std::size_t i = 0; i < ValueCount; ++i)
            inputs[i] = input(peer, values[i]);
        std::size_t round = 0;
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(inputs.data());
            auto result = operation(peer, inputs[round++ % ValueCount]);
            benchmark::DoNotOptimize(result);
        }
    };
    (AddCase(row, Peers::Name, [body](benchmark::State &state) { body(state, Peers()); }), ...);
}

} // namespace

void AddNumberRows(Rows &rows)
{
    constexpr auto peers = PeerList<OwnNumbers
#if defined(VANSYS_BENCH_QT)
                                    ,
                                    QtNumbers
#endif
                                    >();
    auto const value = [](auto, auto number) { return number; };
    auto const text = [](auto peer, auto number)
    {
        // The shortest decimal text that reads back as the number; ASCII.
        char buffer[32] = {};
        *std::to_chars(buffer, std::end(buffer), number).ptr = 0;
        return peer.FromUtf8(buffer);
    };
    auto const number = [](auto peer, auto input) { return peer.Number(input); };

    rows.push_back({"numbers", "number(int)", Target{2.0, {"QString"}}});
    AddCases(rows.back(), Integers(), value, number, peers);
    rows.push_back({"numbers", "number(double, 'g', 6)", Target{1.0, {"QString"}}});
    AddCases(rows.back(), Doubles(), value, number, peers);
    rows.push_back({"numbers", "toInt", Target{2.0, {"QString"}}});
    AddCases(
        rows.back(), Integers(), text, [](auto peer, auto const &input) { return peer.ToInt(input); }, peers);
    rows.push_back({"numbers", "toDouble", Target{5.0, {"QString"}}});
    AddCases(
        rows.back(), Doubles(), text, [](auto peer, auto const &input) { return peer.ToDouble(input); },
        peers);
}

} // namespace bench
