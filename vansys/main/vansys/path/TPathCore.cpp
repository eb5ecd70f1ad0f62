#include "vansys/TPathCore.h"

#include "main/vansys/path/NativeBytes.h"
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

/// Calls `action` with the position of each vector of a text that has at least as many units. The last one
/// ends with the text, and may overlap the one before.
template <class Action>
void ForEachVector(int length, Action action)
{
    for (int i = 0; i < length - LanesOfVector; i += LanesOfVector)
        action(i);
    action(length - LanesOfVector);
}

/// Copies the units of a name, which tends to be short.
void CopyName(TCodeUnit *to, TCodeUnit const *from, int count) noexcept
{
    if (count < LanesOfVector || count > 8 * LanesOfVector)
        CopyUnits(to, from, count);
    else
        ForEachVector(count, [=](int i) { StoreUnits(to + i, LoadUnits(from + i)); });
}

/// Copies the units, with each `before` replaced by `after`; in place where both are the same memory.
void ReplaceUnit(TCodeUnit *to, TCodeUnit const *from, int count, TCodeUnit before, TCodeUnit after) noexcept
{
    if (count < LanesOfVector)
    {
        std::replace_copy(from, from + count, to, before, after);
        return;
    }
    auto const replace = [=](int i)
    {
        UnitVector const units = LoadUnits(from + i);
        UnitVector const isBefore = units == Spread(before);
        StoreUnits(to + i, (Spread(after) & isBefore) | (units & ~isBefore));
    };
    ForEachVector(count, replace);
}

bool Contains(TCodeUnit const *units, int count, TCodeUnit unit) noexcept
{
    if (count < LanesOfVector)
        return std::find(units, units + count, unit) != units + count;
    UnitVector found{};
    ForEachVector(count, [&](int i) { found |= LoadUnits(units + i) == Spread(unit); });
    return LaneBits(found) != 0;
}

TStringCore WithUnitReplaced(TStringCore const &text, TCodeUnit before, TCodeUnit after)
{
    TStringCore result;
    ReplaceUnit(StringAccess::Storage(result).setLengthForOverwrite(text.length()), text.constData(),
                text.length(), before, after);
    return result;
}

/// Whether a separator is to be put between two texts, which both are not empty.
bool NeedsSeparator(TCodeUnit last, TCodeUnit first) noexcept
{
    return last != Separator && first != Separator;
}

/// The same for two paths.
bool NeedsSeparator(TStringCore const &path, TStringCore const &other) noexcept
{
    return !path.isEmpty() && !other.isEmpty() && NeedsSeparator(path.back(), other.front());
}

int JoinedLength(TStringCore const &path, TStringCore const &other, bool needsSeparator)
{
    return StringStorage::checkedLength(std::int64_t{path.length()} + needsSeparator + other.length());
}

/// How long a text is made at first that goes to the heap. Names come in rows: there is to be room for one
/// more like the last.
int LengthWithRoom(int length, int added)
{
    bool const isInline = length < StringStorage::InlineCapacity;
    return isInline ? length : StringStorage::checkedLength(std::int64_t{length} + 1 + added);
}

TCodeUnit MadeGeneric(TCodeUnit unit) noexcept
{
    return unit == NativeSeparator ? Separator : unit;
}

int LengthWithoutTrailingSeparator(PathText path) noexcept
{
    bool const isOneTooMany = path.EndsWithSeparator() && path.RootPathLength() != path.Length();
    return path.Length() - (isOneTooMany ? 1 : 0);
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

    TStringCore const native = path.NativeString();
    // The system would look at what comes before a zero.
    if (native.isEmpty() || native.contains(TCodeUnit{0}))
        return TStringCore();
    if (native.startsWith(Prefix))
        return NameByForm(native, form);
    return NameByForm(TStringCore(Prefix).append(native), form).mid(PrefixLength);
}

} // namespace

// Construction and conversion

TPathCore::TPathCore(TStringCore const &text) : m_text(text)
{
    MakeGeneric();
}

TPathCore::TPathCore(TStringCore &&text) : m_text(std::move(text))
{
    MakeGeneric();
}

TPathCore::TPathCore(TCodeUnit const *text)
{
    int const length = TStringCore::length(text);
    if (length == 0)
        return;
    TCodeUnit *const units = StringAccess::Storage(m_text).setLengthForOverwrite(length);
    ReplaceUnit(units, text, length, NativeSeparator, Separator);
    RemoveTrailingSeparator();
}

void TPathCore::MakeGeneric()
{
    // Only where there is something to replace: a shared text would be detached.
    int const length = m_text.length();
    if (Contains(m_text.constData(), length, NativeSeparator))
    {
        TCodeUnit *const units = m_text.data();
        ReplaceUnit(units, units, length, NativeSeparator, Separator);
    }
    RemoveTrailingSeparator();
}

void TPathCore::RemoveTrailingSeparator()
{
    int const length = LengthWithoutTrailingSeparator(PathText(m_text));
    if (length != m_text.length())
        m_text.truncate(length);
}

TPathCore TPathCore::MakePath(TStringCore generic) noexcept
{
    TPathCore path;
    path.m_text = std::move(generic);
    return path;
}

TPathCore TPathCore::fromVector(std::vector<TStringCore> const &elements)
{
    // An upper bound: a separator at the end of an element is counted, but may be left out.
    std::int64_t most = 0;
    TCodeUnit last = Separator;
    for (TStringCore const &element : elements)
    {
        if (element.isEmpty())
            continue;
        most += NeedsSeparator(last, MadeGeneric(element.front())) + element.length();
        last = MadeGeneric(element.back());
    }

    TPathCore path;
    StringStorage &storage = StringAccess::Storage(path.m_text);
    TCodeUnit *const units = storage.setLengthForOverwrite(StringStorage::checkedLength(most));
    int length = 0;
    for (TStringCore const &element : elements)
    {
        if (element.isEmpty())
            continue;
        if (length > 0 && NeedsSeparator(units[length - 1], MadeGeneric(element.front())))
            units[length++] = Separator;
        TCodeUnit *const out = units + length;
        ReplaceUnit(out, element.constData(), element.length(), NativeSeparator, Separator);
        length += LengthWithoutTrailingSeparator(PathText(out, element.length()));
    }
    storage.shorten(length);
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

TPathCore TPathCore::fromNativeBytes(std::string_view bytes)
{
    return MakePath(DecodeNativeBytes(bytes));
}

std::string TPathCore::toNativeBytes() const
{
    return EncodeNativeBytes(m_text);
}

TStringCore TPathCore::ForHost() const
{
    return TextForHost(m_text);
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
    int const before = m_text.length();
    int const added = other.m_text.length();
    if (added == 0)
        return *this;
    bool const needsSeparator = NeedsSeparator(m_text, other.m_text);
    int const length = JoinedLength(m_text, other.m_text, needsSeparator);
    StringStorage &storage = StringAccess::Storage(m_text);
    storage.setLength(length < m_text.capacity() ? length : LengthWithRoom(length, added));
    storage.shorten(length);
    TCodeUnit *out = storage.writableUnits() + before;
    if (needsSeparator)
        *out++ = Separator;
    // After this path has grown: the other may be the same one.
    CopyName(out, other.m_text.constData(), added);
    return *this;
}

TPathCore TPathCore::operator/(TPathCore const &other) const &
{
    TPathCore result;
    if (IsEmpty() || other.IsEmpty())
    {
        result = other.IsEmpty() ? *this : other; // shared
        return result;
    }
    bool const needsSeparator = NeedsSeparator(m_text, other.m_text);
    int const length = JoinedLength(m_text, other.m_text, needsSeparator);
    StringStorage &storage = StringAccess::Storage(result.m_text);
    TCodeUnit *out = storage.setLengthForOverwrite(LengthWithRoom(length, other.m_text.length()));
    storage.shorten(length);
    CopyName(out, m_text.constData(), m_text.length());
    out += m_text.length();
    if (needsSeparator)
        *out++ = Separator;
    CopyName(out, other.m_text.constData(), other.m_text.length());
    return result;
}

TPathCore TPathCore::operator/(TPathCore const &other) &&
{
    bool const needsSeparator = NeedsSeparator(m_text, other.m_text);
    if (JoinedLength(m_text, other.m_text, needsSeparator) < m_text.capacity())
        return std::move(Append(other));
    TPathCore const &self = *this;
    return self / other;
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

TPathCore TPathCore::Part(int position, int count) const
{
    TPathCore result;
    if (count == m_text.length())
        result.m_text = m_text; // shared
    else
        result.m_text.assign(m_text.constData() + position, count);
    return result;
}

TPathCore TPathCore::RootName() const
{
    return Part(0, RootNameLength());
}

TPathCore TPathCore::RootDirectory() const
{
    return MakePath(HasRootDirectory() ? TStringCore(Separator, 1) : TStringCore());
}

TPathCore TPathCore::RootPath() const
{
    return Part(0, PathText(m_text).RootPathLength());
}

// Names

TPathCore TPathCore::Filename() const
{
    int const index = FilenameIndex();
    return index < 0 ? TPathCore() : Part(index, m_text.length() - index);
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
    return Part(index, PathText(m_text).From(index).LengthWithoutExtension());
}

bool TPathCore::HasStem() const noexcept
{
    int const filename = FilenameIndex();
    int const extension = ExtensionIndex();
    return filename > 0 && (extension < 0 || extension > filename);
}

TPathCore TPathCore::Parent() const
{
    return Part(0, PathText(m_text).ParentLength());
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
