#include "vansys/TPathCore.h"

#include "main/vansys/path/NativeName.h"
#include "main/vansys/path/PathText.h"
#include "main/vansys/string/RawText.h"
#include "main/vansys/string/StringAccess.h"
#include "main/vansys/string/UnitVector.h"

#include <algorithm>
#include <cstdint>

using namespace vansys::detail;

namespace
{

/// Copies the units, with each `before` replaced by `after`; in place where both are the same memory.
void ReplaceUnit(TCodeUnit *to, TCodeUnit const *from, int count, TCodeUnit before, TCodeUnit after) noexcept
{
    auto const replaceVector = [&](int i)
    {
        UnitVector const units = LoadUnits(from + i);
        UnitVector const isBefore = units == Spread(before);
        StoreUnits(to + i, (Spread(after) & isBefore) | (units & ~isBefore));
    };
    int i = 0;
    for (; count - i >= LanesOfVector; i += LanesOfVector)
        replaceVector(i);
    if (i < count && count >= LanesOfVector)
    {
        replaceVector(count - LanesOfVector);
        return;
    }
    for (; i < count; ++i)
        to[i] = from[i] == before ? after : from[i];
}

/// Replaces in the string, which is left as it is, and shared, where there is nothing to replace.
void ReplaceUnit(TStringCore &text, TCodeUnit before, TCodeUnit after)
{
    if (TStringCore::findChar(text.constData(), text.length(), before) >= 0)
        ReplaceUnit(text.data(), text.constData(), text.length(), before, after);
}

TStringCore WithUnitReplaced(TStringCore const &text, TCodeUnit before, TCodeUnit after)
{
    StringStorage result;
    ReplaceUnit(result.setLengthForOverwrite(text.length()), text.constData(), text.length(), before, after);
    return StringAccess::Adopt(std::move(result));
}

/// What the system calls a file, in the form asked for; below the last folder that it knows, what the text
/// calls it.
TStringCore NameByForm(TStringCore const &native, NameForm form)
{
    TStringCore name;
    for (TStringCore known = native; !known.isEmpty(); known = TPathCore(known).Parent().NativeString())
    {
        switch (AskNativeName(form, known, name))
        {
        case NameAnswer::Known:
            return name.append(native.constData() + known.length(), native.length() - known.length());
        case NameAnswer::NoSuchFile:
            break; // a parent is what the text begins with, so that the rest follows it
        case NameAnswer::Failed:
            return TStringCore();
        }
    }
    return TStringCore();
}

TStringCore NativeNameOf(TPathCore const &path, NameForm form)
{
    static constexpr TCodeUnit Prefix[] = {u'\\', u'\\', u'?', u'\\', 0};
    constexpr int PrefixLength = 4;

    if (path.IsEmpty())
        return TStringCore();
    TStringCore const native = path.NativeString();
    if (native.startsWith(Prefix))
        return NameByForm(native, form);
    return NameByForm(TStringCore(Prefix).append(native), form).mid(PrefixLength);
}

} // namespace

// Construction and conversion

TPathCore::TPathCore(TStringCore const &text) : m_text(text)
{
    makeGeneric();
}

TPathCore::TPathCore(TStringCore &&text) : m_text(std::move(text))
{
    makeGeneric();
}

TPathCore::TPathCore(TCodeUnit const *text)
{
    int const length = TStringCore::length(text);
    if (length == 0)
        return;
    TCodeUnit *const units = StringAccess::Storage(m_text).setLengthForOverwrite(length);
    ReplaceUnit(units, text, length, NativeSeparator, Separator);
    removeTrailingSeparator();
}

void TPathCore::makeGeneric()
{
    ReplaceUnit(m_text, NativeSeparator, Separator);
    removeTrailingSeparator();
}

void TPathCore::removeTrailingSeparator()
{
    PathText const path(m_text);
    if (path.EndsWithSeparator() && path.RootPathLength() != path.Length())
        m_text.chop(1);
}

TPathCore TPathCore::MakePath(TStringCore generic) noexcept
{
    TPathCore path;
    path.m_text = std::move(generic);
    return path;
}

TPathCore TPathCore::fromVector(std::vector<TStringCore> const &elements)
{
    TPathCore path;
    std::int64_t length = 0;
    for (TStringCore const &element : elements)
        length += element.length() + 1;
    path.m_text.reserve(StringStorage::checkedLength(length));
    for (TStringCore const &element : elements)
        path.Append(element);
    return path;
}

std::vector<TStringCore> TPathCore::toVector() const
{
    return std::vector<TStringCore>(begin(), end());
}

TStringCore TPathCore::NativeString() const
{
    return WithUnitReplaced(m_text, Separator, NativeSeparator);
}

TStringCore TPathCore::NativeLongPath() const
{
    return NativeNameOf(*this, NameForm::Long);
}

TStringCore TPathCore::NativeShortPath() const
{
    return NativeNameOf(*this, NameForm::Short);
}

void TPathCore::Swap(TPathCore &other)
{
    TStringCore former = TPathCore(m_text); // made generic, and native by the conversion
    if (this != &other)
        m_text = other.m_text;
    other.m_text = std::move(former);
}

// Elements

int TPathCore::size() const noexcept
{
    return PathText(m_text).CountElements();
}

TStringCore TPathCore::front() const
{
    return *begin();
}

TStringCore TPathCore::back() const
{
    return *--end();
}

// Composition

TPathCore &TPathCore::Append(TPathCore const &other)
{
    if (IsEmpty() || other.IsEmpty() || HasTrailingSeparator() || other.HasLeadingSeparator())
        return Concat(other);
    int const before = m_text.length();
    int const added = other.m_text.length();
    StringStorage &storage = StringAccess::Storage(m_text);
    storage.setLength(StringStorage::checkedLength(std::int64_t{before} + 1 + added));
    TCodeUnit *const units = storage.writableUnits();
    units[before] = Separator;
    // After this path has grown: the other may be the same one.
    CopyUnits(units + before + 1, other.m_text.constData(), added);
    return *this;
}

TPathCore TPathCore::operator/(TPathCore const &other) const &
{
    TPathCore result = *this;
    result.Append(other);
    return result;
}

TPathCore TPathCore::operator/(TPathCore const &other) &&
{
    return std::move(Append(other));
}

TPathCore &TPathCore::Concat(TPathCore const &other)
{
    m_text.append(other.m_text);
    return *this;
}

TPathCore TPathCore::operator+(TPathCore const &other) const
{
    TPathCore result = *this;
    result.Concat(other);
    return result;
}

// Root

TPathCore TPathCore::left(int length) const
{
    return MakePath(m_text.left(length));
}

TPathCore TPathCore::RootName() const
{
    return left(RootNameLength());
}

TPathCore TPathCore::RootDirectory() const
{
    return MakePath(HasRootDirectory() ? TStringCore(Separator, 1) : TStringCore());
}

TPathCore TPathCore::RootPath() const
{
    return left(PathText(m_text).RootPathLength());
}

// Names

TPathCore TPathCore::Filename() const
{
    int const index = FilenameIndex();
    return index < 0 ? TPathCore() : MakePath(m_text.mid(index));
}

TStringCore TPathCore::Extension() const
{
    int const index = ExtensionIndex();
    return index < 0 ? TStringCore() : m_text.mid(index);
}

TPathCore TPathCore::Stem() const
{
    int const index = FilenameIndex();
    if (index < 0)
        return TPathCore();
    // Asked by itself, as a ":" in the name makes a difference.
    return MakePath(m_text.mid(index, PathText(m_text).From(index).LengthWithoutExtension()));
}

bool TPathCore::HasStem() const noexcept
{
    int const filename = FilenameIndex();
    int const extension = ExtensionIndex();
    return filename > 0 && (extension < 0 || extension > filename);
}

TPathCore TPathCore::Parent() const
{
    return left(PathText(m_text).ParentLength());
}

bool TPathCore::HasParentPath() const noexcept
{
    return PathText(m_text).ParentLength() > 0;
}

bool TPathCore::IsDots() const noexcept
{
    int const index = FilenameIndex();
    if (index < 0)
        return false;
    PathText const name = PathText(m_text).From(index);
    return (name.Length() == 1 || name.Length() == 2) &&
           std::all_of(name.Units(), name.Units() + name.Length(),
                       [](TCodeUnit unit) { return unit == u'.'; });
}

// Kinds

bool TPathCore::IsExtendedLength() const noexcept
{
    return PathText(m_text).IsExtendedLength();
}

bool TPathCore::IsUNC() const noexcept
{
    return PathText(m_text).IsUNC();
}

TStringCore TPathCore::UNCShareName() const
{
    PathText const share = PathText(m_text).ShareName();
    return TStringCore(share.Units(), share.Length());
}

TStringCore TPathCore::UNCObjectName() const
{
    return HasUNCObjectName() ? m_text.mid(UNCObjectNameIndex()) : TStringCore();
}

bool TPathCore::IsAdminShare() const noexcept
{
    return PathText(m_text).IsAdminShare();
}

TCodeUnit TPathCore::AdminShareDriveLetter() const noexcept
{
    return IsAdminShare() ? *PathText(m_text).ShareName().Units() : TCodeUnit{0xFFFF};
}

// Editing

TPathCore &TPathCore::RemoveFilename()
{
    m_text.truncate(PathText(m_text).LengthWithoutFilename());
    return *this;
}

TPathCore &TPathCore::RemoveExtension()
{
    m_text.truncate(PathText(m_text).LengthWithoutExtension());
    return *this;
}

TPathCore &TPathCore::ReplaceExtension(TStringCore const &extension)
{
    int const kept = PathText(m_text).LengthWithoutExtension();
    // The only thing that may throw comes first.
    TStringCore const added = extension.isEmpty() ? extension : TStringCore(u".").append(extension);
    m_text.replace(kept, -1, added);
    return *this;
}

// Positions

int TPathCore::RootNameLength() const noexcept
{
    return PathText(m_text).RootNameLength();
}

int TPathCore::RootDirectoryIndex() const noexcept
{
    return PathText(m_text).RootDirectoryIndex();
}

bool TPathCore::HasLeadingSeparator() const noexcept
{
    return PathText(m_text).IsSeparatorAt(0);
}

bool TPathCore::HasTrailingSeparator() const noexcept
{
    return PathText(m_text).EndsWithSeparator();
}

int TPathCore::FilenameIndex() const noexcept
{
    return PathText(m_text).FilenameIndex();
}

int TPathCore::ExtensionIndex() const noexcept
{
    return PathText(m_text).ExtensionIndex();
}

int TPathCore::UNCObjectNameIndex() const noexcept
{
    return PathText(m_text).ObjectNameIndex();
}

int TPathCore::ElementLengthAt(int position) const
{
    if (position < 0 || position >= m_text.length())
        throw Exception(u"Element position out of range.", false);
    return PathText(m_text).ElementLengthAt(position);
}

int TPathCore::SeparatorLengthAt(int position) const
{
    if (position < 0 || position >= m_text.length())
        throw Exception(u"Separator position out of range.", false);
    return PathText(m_text).SeparatorLengthAt(position);
}
