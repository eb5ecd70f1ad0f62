/// @file
/// The case folding of comparison and search.
#pragma once

#include "main/vansys/string/UnitComparison.h"
#include "vansys/detail/CharacterTable.h"

namespace vansys::detail
{

/// The unit that stands for `unit` where case is disregarded: the simple case folding of Unicode, with
/// default options. A surrogate stands for itself.
inline TCodeUnit FoldUnit(TCodeUnit unit) noexcept
{
    if (unit < 0x80)
        return static_cast<TCodeUnit>(unit >= 'A' && unit <= 'Z' ? unit + AsciiCaseBit : unit);
    return CharacterTable::selected().folded(unit);
}

namespace
{

/// The way to compare that disregards case; see `Exactly`.
struct WithoutCase
{
    static TCodeUnit Key(TCodeUnit unit) noexcept { return FoldUnit(unit); }

    static bool IsSame(TCodeUnit a, TCodeUnit b) noexcept { return a == b || Key(a) == Key(b); }

    static std::uint32_t Differences(TCodeUnit const *a, TCodeUnit const *b) noexcept
    {
        UnitVector const aUnits = LoadUnits(a);
        UnitVector const bUnits = LoadUnits(b);
        std::uint32_t const bits = LaneBits(FoldAscii(aUnits) == FoldAscii(bUnits)) ^ AllLanes;
        if (bits == 0 || AreAscii(aUnits | bUnits))
            return bits;
        return AreEqualByTable(a, b) ? 0 : DifferencesByUnit(a, b);
    }

    static int EqualPrefix(TCodeUnit const *, TCodeUnit const *, int) noexcept { return 0; }

private:
    static UnitVector FoldAscii(UnitVector units) noexcept
    {
        return units | (AreBetween(units, 'A', 'Z') & AsciiCaseBit);
    }

    /// Whether eight units are equal for all that the table knows yet. There is no branch for each of them,
    /// as texts in which this is so tend to be long.
    static bool AreEqualByTable(TCodeUnit const *a, TCodeUnit const *b) noexcept
    {
        CharacterTable const &table = CharacterTable::selected();
        std::uint32_t differences = 0;
        std::uint32_t unknown = 0;
        for (int i = 0; i < LanesOfVector; ++i)
        {
            std::uint32_t const aFolded = table.foldedIfKnown(a[i]);
            std::uint32_t const bFolded = table.foldedIfKnown(b[i]);
            differences |= aFolded ^ bFolded;
            unknown |= aFolded - 1; // sets the upper bits when that was 0
        }
        return differences == 0 && unknown <= 0xFFFF;
    }

    static std::uint32_t DifferencesByUnit(TCodeUnit const *a, TCodeUnit const *b) noexcept
    {
        return LaneBits(MapUnits(a, Key) == MapUnits(b, Key)) ^ AllLanes;
    }
};

} // namespace

} // namespace vansys::detail
