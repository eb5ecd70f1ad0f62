#include "Rows.h"
#include "vansys/TCType.h"

#include <string>

#if defined(VANSYS_BENCH_ICU)
#    include <unicode/uchar.h>
#endif

namespace bench
{

namespace
{

/// Words of several scripts, digits, punctuation and white space, in an order that no branch predictor
/// learns.
std::u16string MixedText()
{
    static constexpr char16_t const *Words[] = {
        u"The ", u"ferry ", u"leaves\tat ", u"7:45, ",  u"Für ",    u"Gäste ",   u"l'été\n", u"(214) ",
        u"Ωδή ", u"λόγος ", u"ΑΘΗΝΑ. ",     u"Москва ", u"книга ",  u"ДОМ ",     u"١٢٣ ",    u"שלום ",
        u"市场", u"列车、", u"图书馆。",    u"서울 ",   u"한국어 ", u"カタカナ", u"０ＦＦ ", u"€ 5 – ",
    };
    std::u16string text;
    std::uint32_t random = 1;
    while (text.size() < 4096)
    {
        random = random * 1664525 + 1013904223;
        text += Words[(random >> 16) % std::size(Words)];
    }
    text.resize(4096);
    return text;
}

/// Sums up what the function says of each unit.
template <class Function>
auto SumOver(Function function)
{
    return [function, text = MixedText()](benchmark::State &state)
    {
        for (auto _ : state)
        {
            unsigned int sum = 0;
            for (char16_t const unit : text)
                sum += static_cast<unsigned int>(function(unit));
            benchmark::DoNotOptimize(sum);
        }
    };
}

template <class Own, class Icu>
void AddCharacterRow(Rows &rows, std::string const &name, Own own, [[maybe_unused]] Icu icu)
{
    rows.push_back({"character", "TCType::" + name + ", mixed text of 4096 units", Target{3.0, {"ICU"}}});
    AddCase(rows.back(), OwnName, SumOver(own));
#if defined(VANSYS_BENCH_ICU)
    AddCase(rows.back(), "ICU", SumOver(icu));
#endif
}

} // namespace

// A lambda for each function, so that it is called by its name, as in a user's loop, and not by its address.
#if defined(VANSYS_BENCH_ICU)
#    define VANSYS_CHARACTER_ROW(name, icu)                                                                  \
        AddCharacterRow(                                                                                     \
            rows, #name, [](char16_t unit) { return TCType::name(unit); },                                   \
            [](char16_t unit) { return icu; })
#else
#    define VANSYS_CHARACTER_ROW(name, icu)                                                                  \
        AddCharacterRow(                                                                                     \
            rows, #name, [](char16_t unit) { return TCType::name(unit); }, nullptr)
#endif

void AddCharacterRows(Rows &rows)
{
    VANSYS_CHARACTER_ROW(ToLower, u_tolower(unit));
    VANSYS_CHARACTER_ROW(ToUpper, u_toupper(unit));
    VANSYS_CHARACTER_ROW(isAlnum, u_hasBinaryProperty(unit, UCHAR_POSIX_ALNUM) != 0);
    VANSYS_CHARACTER_ROW(isAlpha, u_isUAlphabetic(unit) != 0);
    VANSYS_CHARACTER_ROW(isBlank, u_isblank(unit) != 0);
    VANSYS_CHARACTER_ROW(isCntrl, u_charType(unit) == U_CONTROL_CHAR);
    VANSYS_CHARACTER_ROW(isDigit, u_isdigit(unit) != 0);
    VANSYS_CHARACTER_ROW(isGraph, u_hasBinaryProperty(unit, UCHAR_POSIX_GRAPH) != 0);
    VANSYS_CHARACTER_ROW(isLower, u_isULowercase(unit) != 0);
    VANSYS_CHARACTER_ROW(isPrint, u_hasBinaryProperty(unit, UCHAR_POSIX_PRINT) != 0);
    VANSYS_CHARACTER_ROW(isPunct, u_ispunct(unit) != 0);
    VANSYS_CHARACTER_ROW(isSpace, u_isUWhiteSpace(unit) != 0);
    VANSYS_CHARACTER_ROW(isUpper, u_isUUppercase(unit) != 0);
    VANSYS_CHARACTER_ROW(isXDigit, u_isxdigit(unit) != 0);
}

#undef VANSYS_CHARACTER_ROW

} // namespace bench
