#include "vansys/detail/CharacterTable.h"

#include "main/icu/CaseRules.h"
#include "main/icu/Family.h"

#include <iterator>
#include <type_traits>

namespace vansys::detail
{

namespace
{

constexpr char32_t BlockUnits = 256;

/// The locale without any language's rules.
constexpr char RootLocale[] = "";

// All zero, so that they take up memory only where they are filled in.
CharacterTable g_tableOfVanICU44;
CharacterTable g_tableOfVanICU55;

static_assert(std::is_trivially_default_constructible_v<CharacterTable>,
              "or the tables would not be all zero");

/// Whether the full mapping of the unit, standing alone, is the unit given.
bool MapsInFull(decltype(FunctionTable::u_strToLower) function, char16_t unit, char32_t mapped)
{
    char16_t result[8]; // no mapping is longer than three units
    UErrorCode status = U_ZERO_ERROR;
    int const length = function(result, static_cast<int>(std::size(result)), &unit, 1, RootLocale, &status);
    return U_SUCCESS(status) && length == 1 && result[0] == mapped;
}

unsigned int AskForProperties(FunctionTable const &icu, UChar32 character) noexcept
{
    unsigned int result = CharacterTable::Known;
    auto const add = [&result](CharacterTable::Property property, bool holds)
    {
        if (holds)
            result |= property;
    };
    add(CharacterTable::Alnum, icu.u_hasBinaryProperty(character, UCHAR_POSIX_ALNUM));
    add(CharacterTable::Alpha, icu.u_isUAlphabetic(character));
    add(CharacterTable::Blank, icu.u_isblank(character));
    add(CharacterTable::Digit, icu.u_isdigit(character));
    add(CharacterTable::Graph, icu.u_hasBinaryProperty(character, UCHAR_POSIX_GRAPH));
    add(CharacterTable::Lower, icu.u_isULowercase(character));
    add(CharacterTable::Print, icu.u_hasBinaryProperty(character, UCHAR_POSIX_PRINT));
    add(CharacterTable::Punct, icu.u_ispunct(character));
    add(CharacterTable::Space, icu.u_isUWhiteSpace(character));
    add(CharacterTable::Upper, icu.u_isUUppercase(character));
    add(CharacterTable::XDigit, icu.u_isxdigit(character));
    return result;
}

/// Of a code unit whose simple mappings are given.
unsigned int AskForCaseRules(FunctionTable const &icu, char16_t unit, CharacterRow const &simple) noexcept
{
    unsigned int result = CharacterTable::CaseRulesKnown;
    auto const add = [&result](CharacterTable::CaseRule rule, bool holds)
    {
        if (holds)
            result |= rule;
    };
    // Half a pair is mapped together with the other half.
    bool const isSurrogate = U16_IS_SURROGATE(unit);
    add(CharacterTable::LowerNotSimple,
        isSurrogate || unit == CapitalSigma || !MapsInFull(icu.u_strToLower, unit, simple.lower));
    add(CharacterTable::UpperNotSimple, isSurrogate || !MapsInFull(icu.u_strToUpper, unit, simple.upper));
    add(CharacterTable::LowerByLanguage, LowerDependsOnLanguage(unit));
    add(CharacterTable::UpperByLanguage, UpperDependsOnLanguage(unit));
    add(CharacterTable::Cased, icu.u_hasBinaryProperty(unit, UCHAR_CASED));
    add(CharacterTable::CaseIgnorable, icu.u_hasBinaryProperty(unit, UCHAR_CASE_IGNORABLE));
    return result;
}

CharacterRow AskIcu(FunctionTable const &icu, char32_t codePoint) noexcept
{
    auto const character = static_cast<UChar32>(codePoint);
    CharacterRow row{};
    row.properties = static_cast<std::uint16_t>(AskForProperties(icu, character));
    row.lower = static_cast<char32_t>(icu.u_tolower(character));
    row.upper = static_cast<char32_t>(icu.u_toupper(character));
    row.folded = static_cast<char32_t>(icu.u_foldCase(character, U_FOLD_CASE_DEFAULT));
    if (IsCodeUnit(codePoint))
        row.caseRules =
            static_cast<std::uint8_t>(AskForCaseRules(icu, static_cast<char16_t>(codePoint), row));
    return row;
}

/// Stores what the unit is mapped to.
void StoreMapping(TCodeUnit *mapping, TCodeUnit unit, char32_t mapped) noexcept
{
    // Unicode maps no code unit to a character that is none. If it ever did, the unit would stay as it is.
    TCodeUnit const value = IsCodeUnit(mapped) ? static_cast<TCodeUnit>(mapped) : unit;
    __atomic_store_n(&mapping[unit], value, __ATOMIC_RELAXED);
}

} // namespace

CharacterTable const *CharacterTable::s_selected = &g_tableOfVanICU44;

void CharacterTable::followSelection() noexcept
{
    bool const is44 =
        WithSelectedFamily([](auto family) { return std::is_same_v<decltype(family), VanICU44::Family>; });
    __atomic_store_n(&s_selected, is44 ? &g_tableOfVanICU44 : &g_tableOfVanICU55, __ATOMIC_RELAXED);
}

CharacterRow CharacterTable::ask(char32_t codePoint) noexcept
{
    CharacterTable const &table = selected();
    FunctionTable const &icu =
        &table == &g_tableOfVanICU44 ? VanICU44::Family::Functions : VanICU55::Family::Functions;
    if (!IsCodeUnit(codePoint))
        return AskIcu(icu, codePoint);
    auto const asked = static_cast<TCodeUnit>(codePoint);
    if (__atomic_load_n(&table.m_properties[asked], __ATOMIC_ACQUIRE) == 0)
    {
        char32_t const first = codePoint / BlockUnits * BlockUnits;
        for (char32_t next = first; next < first + BlockUnits; ++next)
        {
            auto const unit = static_cast<TCodeUnit>(next);
            CharacterRow const row = AskIcu(icu, unit);
            StoreMapping(table.m_lower, unit, row.lower);
            StoreMapping(table.m_upper, unit, row.upper);
            StoreMapping(table.m_folded, unit, row.folded);
            __atomic_store_n(&table.m_caseRules[unit], row.caseRules, __ATOMIC_RELAXED);
            // Last: the other words of a unit are read without another look once its properties are known.
            __atomic_store_n(&table.m_properties[unit], row.properties, __ATOMIC_RELEASE);
        }
    }
    return {load(table.m_properties[asked]), load(table.m_caseRules[asked]), load(table.m_lower[asked]),
            load(table.m_upper[asked]), load(table.m_folded[asked])};
}

} // namespace vansys::detail
