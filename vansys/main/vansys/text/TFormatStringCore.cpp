#include "vansys/TFormatStringCore.h"

#include "main/vansys/string/RawText.h"
#include "main/vansys/string/StringAccess.h"
#include "vansys/TCType.h"
#include "vansys/TFormatLiteral.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

using vansys::detail::FormatMarker;
using vansys::detail::StringStorage;
using vansys::detail::Units;
using vansys::detail::UnitsOf;

namespace
{

// Scanning

/// What the scanner is to know at run time.
struct RunTimeRules
{
    static bool IsDigit(TCodeUnit unit)
    {
        return unit < 0x80 ? unit >= u'0' && unit <= u'9' : TCType::isDigit(unit);
    }

    [[noreturn]] static int Fail(char const *message)
    {
        throw TFormatStringCore::Exception(TStringCore(message));
    }
};

/// Counts the markers, and takes down as many as hardly any format string has.
struct FewMarkers : RunTimeRules
{
    static constexpr std::size_t Capacity = 16;

    void AddMarker(FormatMarker const &marker)
    {
        if (count < Capacity)
            markers[count] = marker;
        ++count;
    }

    FormatMarker markers[Capacity];
    std::size_t count = 0;
};

/// Takes down all.
struct AllMarkers : RunTimeRules
{
    void AddMarker(FormatMarker const &marker) { markers.push_back(marker); }

    std::vector<FormatMarker> markers;
};

template <class Sink>
int Scan(Units format, Sink &sink)
{
    return vansys::detail::ScanFormat(format.begin(), format.end(), sink);
}

/// For the few format strings with many markers.
std::vector<FormatMarker> ScanForMany(Units format, std::size_t count)
{
    AllMarkers all;
    all.markers.reserve(count);
    Scan(format, all);
    return std::move(all.markers);
}

// Formatting

Units UnitsOf(Units units)
{
    return units;
}

[[noreturn]] void FailForArguments(std::size_t have, int need, Units format)
{
    throw TFormatStringCore::Exception(
        TFormatStringCore(
            "Insufficient parameters to format string (have %1, need %2: format string = \"%3\")")
            .arg(static_cast<unsigned long long>(have))
            .arg(need)
            .arg(TStringCore(format.data(), static_cast<int>(format.size()))));
}

/// Copies from half of `Chunk` to all of it, in two halves that may overlap.
template <std::size_t Chunk>
void PutInHalves(TCodeUnit *out, Units units)
{
    constexpr std::size_t HalfSize = Chunk / 2 * sizeof *out;
    std::size_t const second = units.size() - Chunk / 2;
    unsigned char halves[2][HalfSize];
    std::memcpy(halves[0], units.data(), HalfSize);
    std::memcpy(halves[1], units.data() + second, HalfSize);
    std::memcpy(out, halves[0], HalfSize);
    std::memcpy(out + second, halves[1], HalfSize);
}

/// Copies units; the few that most parts of a message have cost no call.
inline TCodeUnit *PutUnits(TCodeUnit *out, Units units)
{
    std::size_t const count = units.size();
    if (count < 4)
    {
        if (count == 0)
            return out;
        out[0] = units[0];
        out[count / 2] = units[count / 2];
        out[count - 1] = units[count - 1];
    }
    else if (count <= 8)
        PutInHalves<8>(out, units);
    else if (count <= 16)
        PutInHalves<16>(out, units);
    else if (count <= 32)
        PutInHalves<32>(out, units);
    else
        vansys::detail::CopyUnits(out, units.data(), static_cast<int>(count));
    return out + count;
}

Units Between(TCodeUnit const *begin, TCodeUnit const *end)
{
    return Units(begin, static_cast<std::size_t>(end - begin));
}

/// What takes the place of a marker.
template <class Argument>
Units ReplacementOf(FormatMarker const &marker, Units format, Argument const *arguments)
{
    if (marker.number == 0)
        return Units(format.data() + marker.start, 1); // one of the two percent signs
    return UnitsOf(arguments[marker.number - 1]);
}

/// The format string with its markers replaced, none of which has a number above that of the arguments.
template <class Argument>
TStringCore Assemble(Units format, FormatMarker const *begin, FormatMarker const *end,
                     Argument const *arguments)
{
    auto length = static_cast<std::int64_t>(format.size());
    for (FormatMarker const *marker = begin; marker != end; ++marker)
        length +=
            static_cast<std::int64_t>(ReplacementOf(*marker, format, arguments).size()) - marker->length;

    StringStorage text;
    TCodeUnit *out = text.setLengthForOverwrite(StringStorage::checkedLength(length));
    TCodeUnit const *next = format.data();
    for (FormatMarker const *marker = begin; marker != end; ++marker)
    {
        TCodeUnit const *const percentSign = format.data() + marker->start;
        out = PutUnits(out, Between(next, percentSign));
        out = PutUnits(out, ReplacementOf(*marker, format, arguments));
        next = percentSign + marker->length;
    }
    PutUnits(out, Between(next, format.data() + format.size()));
    return vansys::detail::StringAccess::Adopt(std::move(text));
}

} // namespace

// Setting the format string

TFormatStringCore::TFormatStringCore(TStringCore &&format) : m_format(std::move(format))
{
    scanForMarkers();
}

TFormatStringCore::TFormatStringCore(TStringCore const &format) : TFormatStringCore(TStringCore(format)) {}

TFormatStringCore::TFormatStringCore(TCodeUnit const *format) : TFormatStringCore(TStringCore(format)) {}

TFormatStringCore::TFormatStringCore(TWideTwin const *format) : TFormatStringCore(TStringCore(format)) {}

TFormatStringCore::TFormatStringCore(char const *utf8) : TFormatStringCore(TStringCore(utf8)) {}

TFormatStringCore::TFormatStringCore(TFormatStringCore const &other) = default;

TFormatStringCore::TFormatStringCore(TFormatStringCore &&other) noexcept
    : m_highestNumber(std::exchange(other.m_highestNumber, 0)),
      m_markers(std::move(other.m_markers)),
      m_arguments(std::move(other.m_arguments)),
      m_format(std::move(other.m_format))
{
}

TFormatStringCore::~TFormatStringCore() = default;

TFormatStringCore &TFormatStringCore::operator=(TFormatStringCore const &other)
{
    return *this = TFormatStringCore(other);
}

TFormatStringCore &TFormatStringCore::operator=(TFormatStringCore &&other) noexcept
{
    TFormatStringCore taken(std::move(other));
    swapFormat(taken);
    m_arguments.swap(taken.m_arguments);
    return *this;
}

TFormatStringCore &TFormatStringCore::operator=(TStringCore const &format)
{
    TFormatStringCore fresh(format);
    swapFormat(fresh);
    return *this;
}

void TFormatStringCore::swapFormat(TFormatStringCore &other) noexcept
{
    std::swap(m_highestNumber, other.m_highestNumber);
    m_markers.swap(other.m_markers);
    m_format.swap(other.m_format);
}

void TFormatStringCore::scanForMarkers()
{
    FewMarkers few;
    m_highestNumber = Scan(UnitsOf(m_format), few);
    if (few.count <= FewMarkers::Capacity)
        m_markers.assign(few.markers, few.markers + few.count);
    else
        m_markers = ScanForMany(UnitsOf(m_format), few.count);
}

// Binding arguments

/// Afterwards, binding that many cannot fail.
void TFormatStringCore::makeRoomForArguments(std::size_t count)
{
    // At first for all that the markers ask for, within reason.
    constexpr int MaxOrdinaryNumber = 99;
    std::size_t const needed = m_arguments.size() + count;
    if (needed > m_arguments.capacity())
    {
        auto const expected = static_cast<std::size_t>(std::min(m_highestNumber, MaxOrdinaryNumber));
        m_arguments.reserve(std::max({needed, expected, m_arguments.capacity() * 2}));
    }
}

TFormatStringCore &TFormatStringCore::arg(TStringCore value, int fieldWidth, TCodeUnit fill)
{
    // The opposite of the smallest int is none; no string is as long as the one next to it, either.
    constexpr int MaxWidth = std::numeric_limits<int>::max();
    if (fieldWidth > 0)
        value = value.rightJustified(fieldWidth, fill);
    else if (fieldWidth < 0)
        value = value.leftJustified(-std::max(fieldWidth, -MaxWidth), fill);
    makeRoomForArguments(1);
    m_arguments.push_back(std::move(value));
    return *this;
}

TFormatStringCore &TFormatStringCore::arg(std::vector<TStringCore> const &values)
{
    makeRoomForArguments(values.size());
    m_arguments.insert(m_arguments.end(), values.begin(), values.end());
    return *this;
}

TFormatStringCore &TFormatStringCore::bind(std::initializer_list<TStringCore const *> values)
{
    makeRoomForArguments(values.size());
    for (TStringCore const *const value : values)
        m_arguments.push_back(*value);
    return *this;
}

// The text

TStringCore TFormatStringCore::result() const
{
    if (m_arguments.size() < static_cast<std::size_t>(m_highestNumber))
        FailForArguments(m_arguments.size(), m_highestNumber, UnitsOf(m_format));
    return Assemble(UnitsOf(m_format), m_markers.data(), m_markers.data() + m_markers.size(),
                    m_arguments.data());
}

namespace
{

TStringCore ToString(Units units)
{
    return TStringCore(units.data(), static_cast<int>(units.size()));
}

/// For the few format strings with many markers.
TStringCore FormatWithMany(Units format, std::initializer_list<Units> arguments)
{
    TFormatStringCore result(ToString(format));
    for (Units const argument : arguments)
        result.arg(ToString(argument));
    return result;
}

} // namespace

TStringCore vansys::detail::FormatUnits(Units format, std::initializer_list<Units> arguments)
{
    FewMarkers few;
    int const highestNumber = Scan(format, few);
    if (arguments.size() < static_cast<std::size_t>(highestNumber))
        FailForArguments(arguments.size(), highestNumber, format);
    if (few.count > FewMarkers::Capacity)
        return FormatWithMany(format, arguments);
    return Assemble(format, few.markers, few.markers + few.count, arguments.begin());
}

TFormatStringCore::Exception::~Exception() = default;
