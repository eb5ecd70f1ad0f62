/// @file
/// What ICU says of each character, kept for looking it up in a few instructions.
#pragma once

#include "vansys/Export.h"
#include "vansys/TCodeUnit.h"

#include <cstdint>

namespace vansys::detail
{

/// What there is to know of a character.
struct CharacterRow
{
    std::uint16_t properties; ///< bits of `CharacterTable::Property`
    std::uint8_t caseRules;   ///< bits of `CharacterTable::CaseRule`

    // The simple case mappings, the last with default options.
    char32_t lower;
    char32_t upper;
    char32_t folded;
};

/// The properties and simple case mappings of all 65,536 code units, by one family of the ICU layer.
/// Surrogates are characters of their own. A unit is looked up where it stands; the answers come from ICU,
/// 256 units at a time, when one of them is asked for first.
///
/// Nothing here throws or allocates. Any number of threads may ask at the same time: every answer is a word
/// of its own, read and written by relaxed atomic operations, and threads that fill in the same answers write
/// the same values.
class VANSYS_API CharacterTable
{
public:
    /// The first and the last bit take one instruction less to test than the others. They go to the classes
    /// for which ICU is quick as well.
    enum Property : std::uint16_t
    {
        Punct = 1 << 0,
        Alnum = 1 << 1,
        Alpha = 1 << 2,
        Blank = 1 << 3,
        Graph = 1 << 4,
        Lower = 1 << 5,
        Print = 1 << 6,
        Space = 1 << 7,
        Upper = 1 << 8,
        XDigit = 1 << 9,
        Known = 1 << 10, ///< always set: a word without it has not been filled in yet
        Digit = 1 << 15,
    };

    /// What the full case mappings of text have to heed.
    enum CaseRule : std::uint8_t
    {
        LowerNotSimple = 1 << 0,  ///< the full lower-case mapping is not, or not always, the simple one
        UpperNotSimple = 1 << 1,  ///< the same of the upper-case mapping
        LowerByLanguage = 1 << 2, ///< some languages have lower-case mappings of their own
        UpperByLanguage = 1 << 3, ///< the same of the upper-case mapping
        Cased = 1 << 4,           ///< it is a letter for those whose case depends on the letters around
        CaseIgnorable = 1 << 5,   ///< it is passed over when looking for such letters
        CaseRulesKnown = 1 << 7,  ///< always set
    };

    /// The table of the family that is selected (`VanICU::setIcuVersion`). It lasts as long as the process.
    static CharacterTable const &selected() noexcept { return *load(s_selected); }

    /// Has `selected` follow the ICU layer's choice. Called when that has changed.
    static void followSelection() noexcept;

    bool has(TCodeUnit unit, Property property) const noexcept
    {
        std::uint16_t const known = load(m_properties[unit]);
        if (known == 0)
            return (ask(unit).properties & property) != 0;
        return (known & property) != 0;
    }

    TCodeUnit lower(TCodeUnit unit) const noexcept
    {
        TCodeUnit const known = load(m_lower[unit]);
        return known ? known : static_cast<TCodeUnit>(ask(unit).lower);
    }

    TCodeUnit upper(TCodeUnit unit) const noexcept
    {
        TCodeUnit const known = load(m_upper[unit]);
        return known ? known : static_cast<TCodeUnit>(ask(unit).upper);
    }

    TCodeUnit folded(TCodeUnit unit) const noexcept
    {
        TCodeUnit const known = load(m_folded[unit]);
        return known ? known : static_cast<TCodeUnit>(ask(unit).folded);
    }

    std::uint8_t caseRules(TCodeUnit unit) const noexcept
    {
        std::uint8_t const known = load(m_caseRules[unit]);
        return known ? known : ask(unit).caseRules;
    }

    // The same, or 0 for what has not been filled in: for loops that look at several units before they ask.

    std::uint8_t caseRulesIfKnown(TCodeUnit unit) const noexcept { return load(m_caseRules[unit]); }
    TCodeUnit lowerIfKnown(TCodeUnit unit) const noexcept { return load(m_lower[unit]); }
    TCodeUnit upperIfKnown(TCodeUnit unit) const noexcept { return load(m_upper[unit]); }
    TCodeUnit foldedIfKnown(TCodeUnit unit) const noexcept { return load(m_folded[unit]); }

    /// Everything about any code point. What is not a code point has no property and is mapped to itself.
    /// Those that are no code units are asked for each time.
    [[gnu::cold]] static CharacterRow ask(char32_t codePoint) noexcept;

private:
    static constexpr int Units = 0x10000;

    template <class Word>
    static Word load(Word const &word) noexcept
    {
        return __atomic_load_n(&word, __ATOMIC_RELAXED);
    }

    /// A plain pointer, so that it is initialised before any code runs.
    static CharacterTable const *s_selected;

    // A zero is what has not been filled in, and what U+0000 is mapped to. `ask` tells these apart.
    mutable std::uint16_t m_properties[Units];
    mutable std::uint8_t m_caseRules[Units];
    mutable TCodeUnit m_lower[Units];
    mutable TCodeUnit m_upper[Units];
    mutable TCodeUnit m_folded[Units];
};

constexpr bool IsCodeUnit(char32_t codePoint) noexcept
{
    return codePoint <= 0xFFFF;
}

constexpr char32_t CodePointOf(TCodeUnit unit) noexcept
{
    return unit;
}

constexpr char32_t CodePointOf(TWideTwin element) noexcept
{
    return static_cast<char32_t>(element);
}

/// The byte widened, not decoded.
constexpr char32_t CodePointOf(char byte) noexcept
{
    return static_cast<unsigned char>(byte);
}

// Questions about characters of each of these types

/// General category Cc.
template <class Character>
constexpr bool IsControl(Character character) noexcept
{
    char32_t const codePoint = CodePointOf(character);
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

template <class Character>
bool HasProperty(Character character, CharacterTable::Property property) noexcept
{
    char32_t const codePoint = CodePointOf(character);
    if (IsCodeUnit(codePoint))
        return CharacterTable::selected().has(static_cast<TCodeUnit>(codePoint), property);
    return (CharacterTable::ask(codePoint).properties & property) != 0;
}

template <class Character>
char32_t SimpleLower(Character character) noexcept
{
    char32_t const codePoint = CodePointOf(character);
    if (IsCodeUnit(codePoint))
        return CharacterTable::selected().lower(static_cast<TCodeUnit>(codePoint));
    return CharacterTable::ask(codePoint).lower;
}

template <class Character>
char32_t SimpleUpper(Character character) noexcept
{
    char32_t const codePoint = CodePointOf(character);
    if (IsCodeUnit(codePoint))
        return CharacterTable::selected().upper(static_cast<TCodeUnit>(codePoint));
    return CharacterTable::ask(codePoint).upper;
}

} // namespace vansys::detail
