// Comparing, splitting, cutting and replacing agree with plain versions of them over std::u16string.

#include "FuzzInput.h"

#include "support/ReferenceText.h"

#include <vector>

using fuzz::FuzzInput;
using fuzz::Require;
using fuzz::ToString;

namespace
{

/// The folding of comparison, for the units that an input can hold.
char16_t foldUnit(char16_t unit)
{
    if (unit < 0x80)
        return reference::FoldAscii(unit);
    // Every other odd unit of the input folds to itself.
    switch (unit)
    {
    case 0x00C9:
        return 0x00E9;
    case 0x03A3:
    case 0x03C2:
        return 0x03C3;
    case 0x1E9E:
        return 0x00DF;
    case 0x212A:
        return u'k';
    default:
        return unit;
    }
}

void compareWithReference(FuzzInput &input)
{
    bool const ignoreCase = input.TakeBool();
    auto const sensitivity = ignoreCase ? TStringCore::CaseInsensitive : TStringCore::CaseSensitive;
    reference::Fold const fold = ignoreCase ? foldUnit : reference::KeepCase;
    std::u16string const text = input.TakeText(120);
    std::u16string const sought = input.TakeText(4);
    std::u16string const other = input.TakeText(6);
    int const start = input.TakeInt(-2, 130);
    TStringCore const ownText = ToString(text);
    TStringCore const ownSought = ToString(sought);

    Require(ownText.compare(ToString(other), sensitivity) == reference::Compare(text, other, fold));
    Require(ownSought.compare(ToString(other), sensitivity) == reference::Compare(sought, other, fold));
    Require(ownText.indexOf(ownSought, start, sensitivity) == reference::IndexOf(text, sought, start, fold));
    Require(ownText.lastIndexOf(ownSought, start, sensitivity) ==
            reference::LastIndexOf(text, sought, start, fold));
    Require(ownText.count(ownSought, sensitivity) == reference::Count(text, sought, fold));

    TStringCore replaced = ownText;
    Require(replaced.replaceCount(ownSought, ToString(other), sensitivity) ==
            ownText.count(ownSought, sensitivity));
    Require(replaced == ToString(reference::Replace(text, sought, other, fold)));
    Require(ownText == ToString(text)); // the copy has changed alone

    bool const skipEmpty = input.TakeBool();
    std::vector<TStringCore> const parts = ownText.split(
        ownSought, skipEmpty ? TStringCore::SkipEmptyParts : TStringCore::KeepEmptyParts, sensitivity);
    std::vector<std::u16string> const expectedParts = reference::Split(text, sought, skipEmpty, fold);
    Require(parts.size() == expectedParts.size());
    for (std::size_t i = 0; i < parts.size(); ++i)
        Require(parts[i] == ToString(expectedParts[i]));
    if (!skipEmpty && !ignoreCase && !sought.empty())
        Require(TStringCore::join(parts, ownSought) == ownText);

    int const first = input.TakeInt(-6, 6);
    int const last = input.TakeInt(-6, 6);
    int const flags = input.TakeInt(0, 7);
    auto const ownFlags = static_cast<TStringCore::SectionFlags>(
        flags | (ignoreCase ? TStringCore::SectionCaseInsensitiveSeps : TStringCore::SectionDefault));
    Require(ownText.section(ownSought, first, last, ownFlags) ==
            ToString(reference::Section(text, sought, first, last, flags, fold)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    FuzzInput input(data, size);
    compareWithReference(input);
    return 0;
}
