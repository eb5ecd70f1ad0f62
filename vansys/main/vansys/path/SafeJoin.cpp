// The names that a text of unknown origin may consist of, on every system.

#include "main/vansys/path/PathAccess.h"
#include "main/vansys/path/PathText.h"
#include "vansys/TPathCore.h"

#include <algorithm>
#include <iterator>
#include <string_view>

using namespace vansys::detail;

namespace
{

/// Text as it was given, in which both slashes are separators.
using Units = std::basic_string_view<TCodeUnit>;

[[noreturn]] void Refuse(char const *reason)
{
    throw TPathCore::Exception(TStringCore("SafeJoin: ").append(reason), false);
}

bool IsSeparator(TCodeUnit unit) noexcept
{
    return unit == Separator || unit == NativeSeparator;
}

TCodeUnit ToAsciiUpper(TCodeUnit unit) noexcept
{
    return unit >= u'a' && unit <= u'z' ? static_cast<TCodeUnit>(unit - u'a' + u'A') : unit;
}

/// The name of the device that Windows opens for a name in whatever folder: without what follows the first
/// dot, and without the blanks before that.
bool IsDevice(Units name) noexcept
{
    name = name.substr(0, name.find(TCodeUnit{u'.'}));
    name = name.substr(0, name.find_last_not_of(TCodeUnit{u' '}) + 1);
    auto const is = [&name](std::string_view device)
    {
        return std::equal(name.begin(), name.end(), device.begin(), device.end(),
                          [](TCodeUnit unit, char letter)
                          { return ToAsciiUpper(unit) == static_cast<TCodeUnit>(letter); });
    };
    static constexpr std::string_view Devices[] = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$", "CLOCK$"};
    if (std::any_of(std::begin(Devices), std::end(Devices), is))
        return true;
    if (name.size() != 4)
        return false;
    // A digit, or one of the three that are written high.
    TCodeUnit const last = name.back();
    bool const isPort = (last >= u'0' && last <= u'9') || last == 0xB9 || last == 0xB2 || last == 0xB3;
    name.remove_suffix(1);
    return isPort && (is("COM") || is("LPT"));
}

void RefuseBeginning(Units text)
{
    bool const isRooted = !text.empty() && IsSeparator(text[0]);
    bool const isDoublyRooted = isRooted && text.size() > 1 && IsSeparator(text[1]);
    if (isRooted && text.size() > 3 && IsSeparator(text[3]))
    {
        // "//?/", "//./", and "/??/", which is how the system itself writes the first.
        bool const isPrefix =
            (isDoublyRooted && (text[2] == u'?' || text[2] == u'.')) || (text[1] == u'?' && text[2] == u'?');
        if (isPrefix)
            Refuse("the path has an extended-length or device prefix.");
    }
    if (isDoublyRooted)
        Refuse("the path has a root name.");
    if (isRooted)
        Refuse("the path has a root directory.");
    if (text.size() > 1 && text[1] == u':' && PathText(text.data(), 2).RootNameLength() == 2)
    {
        if (text.size() > 2 && IsSeparator(text[2]))
            Refuse("the path has a root name.");
        Refuse("the path begins in the current folder of a drive.");
    }
}

void RefuseName(Units name)
{
    if (name == Units(TStringCore(u"..").constData(), 2))
        Refuse("the path leads upwards.");
    if (name.find(TCodeUnit{u':'}) != Units::npos)
        Refuse("a name has an alternate stream.");
    if (name.back() == u'.' || name.back() == u' ')
        Refuse("a name ends with a dot or a blank.");
    if (IsDevice(name))
        Refuse("a name is that of a device.");
}

} // namespace

TPathCore TPathCore::SafeJoin(TPathCore const &base, TStringCore const &untrusted)
{
    Units const text(untrusted.constData(), static_cast<std::size_t>(untrusted.length()));
    if (text.find(TCodeUnit{0}) != Units::npos)
        Refuse("the path has a zero unit.");
    RefuseBeginning(text);

    PathText const root(base.m_text);
    bool const isDriveOnly = root.Length() > 0 && root.Units()[root.Length() - 1] == u':' &&
                             root.RootPathLength() == root.Length() && root.RootDirectoryIndex() < 0;
    TStringCore joined = base.m_text;
    bool needsSeparator = !joined.isEmpty() && !root.EndsWithSeparator() && !isDriveOnly;
    for (std::size_t position = 0; position < text.size();)
    {
        std::size_t const begin = position;
        while (position < text.size() && !IsSeparator(text[position]))
            ++position;
        Units const name = text.substr(begin, position - begin);
        ++position;
        if (name.empty())
            continue;
        RefuseName(name);
        if (needsSeparator)
            joined.append(Separator);
        joined.append(name.data(), static_cast<int>(name.size()));
        needsSeparator = true;
    }
    // A base such as "//" is no folder, but the beginning of a server's name, and "//?" that of a prefix.
    PathText const result(joined);
    if (result.RootNameLength() != root.RootNameLength() || result.RootPathLength() < root.RootPathLength() ||
        result.IsExtendedLength() != root.IsExtendedLength())
        Refuse("the base is not a folder.");
    return MakePath(std::move(joined));
}
