// Case mapping of text: ICU's full mappings for its default locale.
//
// ICU takes one character after the other, by rules that look at the letters around and at the language. Most
// text needs none of them, and is mapped here: ASCII in vectors, the rest by table. Where a unit is met whose
// mapping depends on the language, ICU is asked how it maps such units now. Anything else that takes rules
// leaves the whole text to ICU.

#include "vansys/TStringCore.h"

#include "main/icu/CaseRules.h"
#include "main/vansys/string/RawText.h"
#include "main/vansys/string/StringAccess.h"
#include "main/vansys/string/UnitVector.h"
#include "vansys/ICUStringFunctions.h"
#include "vansys/detail/CharacterTable.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace vansys::detail;

namespace
{

constexpr char const *DefaultLocale = nullptr;

/// What the algorithms need to know of lower-casing.
struct LowerCase
{
    // The ASCII letters that are mapped, and those of them whose mapping depends on the language.
    static constexpr char First = 'A';
    static constexpr char Last = 'Z';
    static constexpr char FirstByLanguage = 'I';
    static constexpr char LastByLanguage = 'J';

    static constexpr CharacterTable::CaseRule NotSimple = CharacterTable::LowerNotSimple;
    static constexpr CharacterTable::CaseRule ByLanguage = CharacterTable::LowerByLanguage;

    // Every language with rules of its own maps the probe to something else.
    static constexpr TCodeUnit Probe[] = {'I', 0x0300};
    static constexpr TCodeUnit PlainAnswer[] = {'i', 0x0300};

    static bool IsSigma(TCodeUnit unit) noexcept { return unit == CapitalSigma; }
    static TCodeUnit Simple(CharacterTable const &table, TCodeUnit unit) noexcept
    {
        return table.lower(unit);
    }
    static TCodeUnit SimpleIfKnown(CharacterTable const &table, TCodeUnit unit) noexcept
    {
        return table.lowerIfKnown(unit);
    }

    static int Full(TCodeUnit *out, int capacity, TCodeUnit const *text, int length,
                    VanICU::ICUErrorCode *status)
    {
        return VanICU::t_u_strToLower(out, capacity, text, length, DefaultLocale, status);
    }
};

/// The same of upper-casing.
struct UpperCase
{
    static constexpr char First = 'a';
    static constexpr char Last = 'z';
    static constexpr char FirstByLanguage = 'i';
    static constexpr char LastByLanguage = 'i';

    static constexpr CharacterTable::CaseRule NotSimple = CharacterTable::UpperNotSimple;
    static constexpr CharacterTable::CaseRule ByLanguage = CharacterTable::UpperByLanguage;

    static constexpr TCodeUnit Probe[] = {'i', CombiningDotAbove, 0x03AC};
    static constexpr TCodeUnit PlainAnswer[] = {'I', CombiningDotAbove, 0x0386};

    static bool IsSigma(TCodeUnit) noexcept { return false; }
    static TCodeUnit Simple(CharacterTable const &table, TCodeUnit unit) noexcept
    {
        return table.upper(unit);
    }
    static TCodeUnit SimpleIfKnown(CharacterTable const &table, TCodeUnit unit) noexcept
    {
        return table.upperIfKnown(unit);
    }

    static int Full(TCodeUnit *out, int capacity, TCodeUnit const *text, int length,
                    VanICU::ICUErrorCode *status)
    {
        return VanICU::t_u_strToUpper(out, capacity, text, length, DefaultLocale, status);
    }
};

/// Whether ICU's default locale leaves the mapping at what it is in most languages. Asked each time: the host
/// may change the default locale at any time, also behind the library's back.
template <class Case>
bool LanguageIsPlain()
{
    TCodeUnit answer[8];
    VanICU::ICUErrorCode status = VanICU::U_ZERO_ERROR;
    int const length = Case::Full(answer, static_cast<int>(std::size(answer)), Case::Probe,
                                  static_cast<int>(std::size(Case::Probe)), &status);
    return VanICU::ICU_SUCCESS(status) &&
           std::equal(answer, answer + length, std::begin(Case::PlainAnswer), std::end(Case::PlainAnswer));
}

/// Maps a text as far as it goes without ICU's rules.
template <class Case>
class SimpleMapping
{
public:
    SimpleMapping(TCodeUnit const *text, int length) noexcept : m_text(text), m_length(length) {}

    /// A position before which nothing changes; the length when nothing does at all.
    int FirstChange() const noexcept
    {
        int i = 0;
        for (; m_length - i >= LanesOfVector; i += LanesOfVector)
        {
            UnitVector const units = LoadUnits(m_text + i);
            if (!AreAscii(units))
            {
                if (std::any_of(m_text + i, m_text + i + LanesOfVector,
                                [this](TCodeUnit unit) { return Changes(unit); }))
                    return i;
            }
            else if (LaneBits(AreBetween(units, Case::First, Case::Last)) != 0)
                return i;
        }
        while (i < m_length && !Changes(m_text[i]))
            ++i;
        return i;
    }

    /// Maps what begins at `i` into `out`, which has room for the whole text. Returns whether that was
    /// possible.
    bool Map(int i, TCodeUnit *out)
    {
        for (; m_length - i >= LanesOfVector; i += LanesOfVector)
        {
            if (!MapAscii(i, out) && !MapByTable(i, out) && !MapByUnit(i, i + LanesOfVector, out))
                return false;
        }
        // One more vector ends with the text; what it begins with comes out as before.
        bool const done =
            i == m_length || (m_length >= LanesOfVector && MapAscii(m_length - LanesOfVector, out));
        if (!done && !MapByUnit(i, m_length, out))
            return false;
        bool const isPlain = LaneBits(m_asciiByLanguage) == 0 && (m_rules & Case::ByLanguage) == 0;
        return isPlain || LanguageIsPlain<Case>();
    }

private:
    bool Changes(TCodeUnit unit) const noexcept
    {
        return (m_table.caseRules(unit) & (Case::NotSimple | Case::ByLanguage)) != 0 ||
               Case::Simple(m_table, unit) != unit;
    }

    /// Maps eight units, if all are ASCII.
    bool MapAscii(int i, TCodeUnit *out) noexcept
    {
        UnitVector const units = LoadUnits(m_text + i);
        if (!AreAscii(units))
            return false;
        StoreUnits(out + i, units ^ (AreBetween(units, Case::First, Case::Last) & AsciiCaseBit));
        m_asciiByLanguage |= AreBetween(units, Case::FirstByLanguage, Case::LastByLanguage);
        return true;
    }

    /// Maps eight units, if the table has them all and their mappings are simple. There is no branch for each
    /// of them, as most text is mapped by this or by `MapAscii`.
    bool MapByTable(int begin, TCodeUnit *out) noexcept
    {
        std::uint32_t any = 0;
        std::uint32_t all = CharacterTable::CaseRulesKnown;
        std::uint32_t unknown = 0;
        for (int i = begin; i < begin + LanesOfVector; ++i)
        {
            std::uint32_t const rules = m_table.caseRulesIfKnown(m_text[i]);
            std::uint32_t const mapped = Case::SimpleIfKnown(m_table, m_text[i]);
            any |= rules;
            all &= rules;
            unknown |= mapped - 1; // sets the upper bits when that was 0
            out[i] = static_cast<TCodeUnit>(mapped);
        }
        m_rules |= any;
        return (any & Case::NotSimple) == 0 && all != 0 && unknown <= 0xFFFF;
    }

    bool MapByUnit(int i, int end, TCodeUnit *out) noexcept
    {
        for (; i < end; ++i)
        {
            TCodeUnit const unit = m_text[i];
            std::uint32_t const rules = m_table.caseRules(unit);
            m_rules |= rules;
            out[i] = Case::Simple(m_table, unit);
            if ((rules & Case::NotSimple) != 0)
            {
                if (!Case::IsSigma(unit))
                    return false;
                // At the end of a word a sigma has a form of its own: behind a letter, and not before one.
                if (LetterLies(i - 1, -1) && !LetterLies(i + 1, 1))
                    out[i] = FinalSigma;
            }
        }
        return true;
    }

    /// Whether the next character from `i` on that is not to be passed over is a letter. What it says of
    /// surrogates does not matter, as a text with any of them is left to ICU.
    bool LetterLies(int i, int step) const noexcept
    {
        for (; i >= 0 && i < m_length; i += step)
        {
            std::uint32_t const rules = m_table.caseRules(m_text[i]);
            if ((rules & CharacterTable::CaseIgnorable) == 0)
                return (rules & CharacterTable::Cased) != 0;
        }
        return false;
    }

    CharacterTable const &m_table = CharacterTable::selected();
    TCodeUnit const *m_text;
    int m_length;
    UnitVector
        m_asciiByLanguage{};   ///< not zero once `MapAscii` has met a letter that depends on the language
    std::uint32_t m_rules = 0; ///< all that the table says of the units mapped by it
};

/// Has ICU map the text into `out`. Returns false when ICU fails for no reason that it is known to have.
template <class Case>
bool MapInFull(TCodeUnit const *text, int length, StringStorage &out)
{
    int wanted = length;
    for (;;)
    {
        TCodeUnit *const units = out.setLengthForOverwrite(wanted);
        VanICU::ICUErrorCode status = VanICU::U_ZERO_ERROR;
        wanted = Case::Full(units, out.capacity() - 1, text, length, &status);
        if (VanICU::ICU_SUCCESS(status))
        {
            out.shorten(wanted);
            return true;
        }
        switch (status)
        {
        case VanICU::U_BUFFER_OVERFLOW_ERROR:
            break;
        case VanICU::U_MEMORY_ALLOCATION_ERROR:
            throw TStringCore::Exception("Out of memory");
        case VanICU::U_INDEX_OUTOFBOUNDS_ERROR: // the result is longer than any `int`
            throw TStringCore::Exception("Allocation size less than zero; probable overflow");
        default:
            return false;
        }
    }
}

template <class Case>
TStringCore MapCase(TStringCore const &text)
{
    int const length = text.length();
    SimpleMapping<Case> mapping(text.constData(), length);
    int const first = mapping.FirstChange();
    if (first == length)
        return text;
    StringStorage result;
    TCodeUnit *const units = result.setLengthForOverwrite(length);
    CopyUnits(units, text.constData(), first);
    if (!mapping.Map(first, units) && !MapInFull<Case>(text.constData(), length, result))
        return text;
    return StringAccess::Adopt(std::move(result));
}

} // namespace

TStringCore TStringCore::toLower() const
{
    return MapCase<LowerCase>(*this);
}

TStringCore TStringCore::toUpper() const
{
    return MapCase<UpperCase>(*this);
}
