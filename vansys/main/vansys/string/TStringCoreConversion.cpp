// Conversions of TStringCore between UTF-16 and UTF-8, UTF-32, the other wide type and the Latin code pages.

#include "main/vansys/string/Utf.h"
#include "vansys/TStringCore.h"

#include <algorithm>
#include <cstring>
#include <limits>

using vansys::StringFunctions;
using vansys::Text;
using vansys::detail::StringStorage;
using vansys::detail::TwinText;

namespace
{

/// The eight bytes in which ISO 8859-15 differs from ISO 8859-1.
struct Latin9Row
{
    unsigned char byte;
    TCodeUnit unit;
};

constexpr Latin9Row Latin9Rows[] = {
    {0xA4, 0x20AC}, {0xA6, 0x0160}, {0xA8, 0x0161}, {0xB4, 0x017D},
    {0xB8, 0x017E}, {0xBC, 0x0152}, {0xBD, 0x0153}, {0xBE, 0x0178},
};

/// What stands for a code point that a Latin code page lacks.
constexpr int NotRepresentable = -1;

int Latin1Byte(std::uint32_t codePoint)
{
    return codePoint < 0x100 ? static_cast<int>(codePoint) : NotRepresentable;
}

int Latin9Byte(std::uint32_t codePoint)
{
    for (Latin9Row const &row : Latin9Rows)
    {
        if (codePoint == row.unit)
            return row.byte;
        if (codePoint == row.byte)
            return NotRepresentable;
    }
    return Latin1Byte(codePoint);
}

template <class ToByte>
std::string ToNarrow(TStringCore const &text, ToByte toByte, bool *complete)
{
    std::string result;
    result.reserve(static_cast<std::size_t>(text.length()));
    bool allFit = true;
    TCodeUnit const *next = text.cbegin();
    while (next != text.cend())
    {
        int const byte = toByte(vansys::detail::TakeCodePoint(next, text.cend()));
        allFit = allFit && byte != NotRepresentable;
        result.push_back(byte == NotRepresentable ? '?' : static_cast<char>(byte));
    }
    if (complete)
        *complete = allFit;
    return result;
}

/// A string of what `write` puts into room for `size` bytes; `write` returns how much that is.
template <class Write>
std::string WriteString(int size, Write write)
{
    std::string result;
#if defined(__cpp_lib_string_resize_and_overwrite)
    result.resize_and_overwrite(static_cast<std::size_t>(size),
                                [&](char *room, std::size_t) { return write(room); });
#else
    result.resize(static_cast<std::size_t>(size));
    result.resize(static_cast<std::size_t>(write(result.data())));
#endif
    return result;
}

/// The length of zero-terminated text of code points, or the count given.
template <class CodePoint>
std::int64_t CountCodePoints(CodePoint const *codePoints, int count)
{
    if (count >= 0)
        return count;
    CodePoint const *end = codePoints;
    while (*end != CodePoint{0})
        ++end;
    return end - codePoints;
}

/// Replaces the text by UTF-32, in the type that it comes in.
template <class CodePoint>
void AssignUtf32(StringStorage &storage, CodePoint const *codePoints, int count)
{
    std::int64_t const elements = CountCodePoints(codePoints, count);
    std::int64_t length = 0;
    for (std::int64_t i = 0; i < elements; ++i)
        length += vansys::detail::UnitsOfCodePoint(static_cast<std::uint32_t>(codePoints[i]));
    TCodeUnit *out = storage.setLengthForOverwrite(StringStorage::checkedLength(length));
    for (std::int64_t i = 0; i < elements; ++i)
        out = vansys::detail::PutCodePoint(static_cast<std::uint32_t>(codePoints[i]), out);
}

/// The length of narrow text as `int`.
int Measure(char const *utf8, int count)
{
    if (count >= 0)
        return count;
    std::size_t const length = std::strlen(utf8);
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw TStringCore::Exception("Appended string is too long");
    return static_cast<int>(length);
}

/// Replaces the text by decoded UTF-8.
void AssignUtf8(StringStorage &storage, char const *utf8, int count)
{
    int const bytes = Measure(utf8, count);
    TCodeUnit *const units = storage.setLengthForOverwrite(bytes);
    storage.shorten(static_cast<int>(vansys::detail::DecodeUtf8(utf8, bytes, units) - units));
}

/// The length of a standard container as `int`.
template <class Container>
int LengthOf(Container const &text)
{
    return StringStorage::checkedLength(static_cast<std::int64_t>(
        std::min<std::uint64_t>(text.size(), std::numeric_limits<std::int64_t>::max())));
}

} // namespace

// UTF-8

TStringCore::TStringCore(char const *utf8, int count)
{
    constructFromUtf8(utf8, count);
}

void TStringCore::constructFromUtf8(char const *utf8, int count)
{
    if (utf8)
        AssignUtf8(m_storage, utf8, count);
    else
        clear();
}

TStringCore &TStringCore::assign(char const *utf8, int count)
{
    if (inSelf(utf8))
    {
        TStringCore const decoded(utf8, count);
        return assign(decoded.constData(), decoded.length());
    }
    constructFromUtf8(utf8, count);
    return *this;
}

TStringCore &TStringCore::append(char const *utf8, int count)
{
    if (!utf8)
        return *this;
    if (inSelf(utf8))
        return append(TStringCore(utf8, count));
    int const bytes = Measure(utf8, count);
    if (bytes == 0)
        return *this;
    int const before = length();
    m_storage.setLength(StringStorage::checkedLength(std::int64_t{before} + bytes));
    TCodeUnit *const units = m_storage.writableUnits();
    m_storage.shorten(static_cast<int>(vansys::detail::DecodeUtf8(utf8, bytes, units + before) - units));
    return *this;
}

TStringCore TStringCore::fromStdString(std::string const &utf8)
{
    return TStringCore(utf8.data(), LengthOf(utf8));
}

std::string TStringCore::toStdString() const
{
    TCodeUnit const *next = cbegin();
    std::string result = WriteString(length(),
                                     [&](char *room)
                                     {
                                         next += vansys::detail::EncodeAsciiPrefix(next, length(), room);
                                         return next - cbegin();
                                     });

    // How long the rest gets shows only when it is there: portions of it are encoded aside and appended.
    constexpr std::ptrdiff_t Portion = 2048;
    char encoded[Portion * vansys::detail::MaxUtf8BytesOfUnit];
    while (next != cend())
    {
        std::ptrdiff_t const rest = cend() - next;
        std::ptrdiff_t count = std::min(rest, Portion);
        if (count > 1 && vansys::detail::IsHighSurrogate(next[count - 1]))
            --count; // its partner may be the first of the next portion
        char const *const end = vansys::detail::EncodeUtf8(next, static_cast<int>(count), encoded);
        auto const bytes = static_cast<std::size_t>(end - encoded);
        // The room that all portions take if the others are like this one.
        result.reserve(result.size() + bytes * static_cast<std::size_t>((rest + count - 1) / count));
        result.append(encoded, bytes);
        next += count;
    }
    return result;
}

// UTF-32 and the other wide type

TStringCore TStringCore::fromUtf32(unsigned int const *codePoints, int count)
{
    TStringCore result;
    if (codePoints)
        AssignUtf32(result.m_storage, codePoints, count);
    return result;
}

TStringCore TStringCore::fromUtf32(char32_t const *codePoints, int count)
{
    TStringCore result;
    if (codePoints)
        AssignUtf32(result.m_storage, codePoints, count);
    return result;
}

TStringCore &TStringCore::assign(TWideTwin const *text, int count)
{
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
        return assign(reinterpret_cast<TCodeUnit const *>(text), count);
    else if (text)
        AssignUtf32(m_storage, text, count);
    else
        clear();
    return *this;
}

TStringCore &TStringCore::append(TWideTwin const *text, int count)
{
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
        return append(reinterpret_cast<TCodeUnit const *>(text), count);
    else
        return append(TStringCore(text, count));
}

TStringCore &TStringCore::assign(TWideTwin codePoint, int count)
{
    TStringCore const units(&codePoint, 1);
    return assignRepeated(units.constData(), units.length(), count);
}

TStringCore &TStringCore::append(TWideTwin codePoint)
{
    return append(&codePoint, 1);
}

TStringCore::TStringCore(std::u16string_view text)
{
    assign(reinterpret_cast<TCodeUnit const *>(text.data()), LengthOf(text));
}

TStringCore::TStringCore(std::wstring_view text)
{
    assign(text.data(), LengthOf(text));
}

TStringCore TStringCore::fromStdWString(std::wstring const &text)
{
    return TStringCore(std::wstring_view(text));
}

TStringCore TStringCore::fromStdUString(std::u16string const &text)
{
    return TStringCore(std::u16string_view(text));
}

std::u16string TStringCore::toStdUString() const
{
    return std::u16string(std::u16string_view(*this));
}

std::wstring TStringCore::toStdWString() const
{
    if constexpr (sizeof(wchar_t) == sizeof(TCodeUnit))
        return std::wstring(cbegin(), cend());
    else
    {
        std::wstring result;
        result.reserve(static_cast<std::size_t>(length()));
        for (TCodeUnit const *next = cbegin(); next != cend();)
            result.push_back(static_cast<wchar_t>(vansys::detail::TakeCodePoint(next, cend())));
        return result;
    }
}

int TStringCore::toWCharArray(TCodeUnit *buffer, int capacity) const
{
    if (!buffer || capacity <= 0)
        return 0;
    int const copied = std::min(length(), capacity - 1);
    std::copy_n(cbegin(), copied, buffer);
    buffer[copied] = 0;
    return copied;
}

int TStringCore::toWCharArray(TWideTwin *buffer, int capacity) const
{
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
        return toWCharArray(reinterpret_cast<TCodeUnit *>(buffer), capacity);
    else
    {
        if (!buffer || capacity <= 0)
            return 0;
        int written = 0;
        for (TCodeUnit const *next = cbegin(); next != cend() && written < capacity - 1; ++written)
            buffer[written] = static_cast<TWideTwin>(vansys::detail::TakeCodePoint(next, cend()));
        buffer[written] = 0;
        return written;
    }
}

std::vector<wchar_t> TStringCore::toWCharVector() const
{
    std::vector<wchar_t> result(static_cast<std::size_t>(length()) + 1);
    int const written = toWCharArray(result.data(), length() + 1);
    result.resize(static_cast<std::size_t>(written) + 1);
    return result;
}

// Code points

int TStringCore::lengthInCodePoints() const noexcept
{
    int count = 0;
    for (TCodeUnit const *next = cbegin(); next != cend(); ++count)
        vansys::detail::TakeCodePoint(next, cend());
    return count;
}

int StringFunctions::lengthInCodePoints(TCodeUnit const *text)
{
    int count = 0;
    TCodeUnit const *const end = text + length(text);
    for (TCodeUnit const *next = text; next != end; ++count)
        vansys::detail::TakeCodePoint(next, end);
    return count;
}

int StringFunctions::lengthInCodePoints(TWideTwin const *text)
{
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
        return lengthInCodePoints(reinterpret_cast<TCodeUnit const *>(text));
    else
        return length(text);
}

// Text for the time of a call

Text::Text(TWideTwin const *text) : m_units(nullptr), m_length(0)
{
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
    {
        m_units = reinterpret_cast<TCodeUnit const *>(text);
        m_length = StringFunctions::length(m_units);
    }
    else if (text)
    {
        m_isCodePoints = true;
        AssignUtf32(m_own, text, -1);
        m_units = m_own.units();
        m_length = m_own.length();
    }
}

Text::Text(char const *utf8) : m_units(nullptr), m_length(0)
{
    if (!utf8)
        return;
    m_isCodePoints = true;
    AssignUtf8(m_own, utf8, -1);
    m_units = m_own.units();
    m_length = m_own.length();
}

Text::Text(TWideTwin codePoint) noexcept
    : m_units(m_own.setLengthForOverwrite(
          vansys::detail::UnitsOfCodePoint(static_cast<std::uint32_t>(codePoint)))),
      m_length(m_own.length()),
      m_isCodePoints(sizeof(TWideTwin) != sizeof(TCodeUnit))
{
    vansys::detail::PutCodePoint(static_cast<std::uint32_t>(codePoint), m_own.writableUnits());
}

TwinText::TwinText(TWideTwin const *text, int length)
    : m_text(text),
      m_count(0),
      m_units(nullptr),
      m_length(0)
{
    if (!text)
        return;
    m_count = length < 0 ? StringFunctions::length(text) : length;
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
    {
        m_units = reinterpret_cast<TCodeUnit const *>(text);
        m_length = m_count;
    }
    else
    {
        AssignUtf32(m_transcoded, text, m_count);
        m_units = m_transcoded.units();
        m_length = m_transcoded.length();
    }
}

int TwinText::position(int unit) const noexcept
{
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
        return unit;
    int element = 0;
    for (int units = 0; units < unit; ++element)
    {
        units += vansys::detail::UnitsOfCodePoint(static_cast<std::uint32_t>(m_text[element]));
        if (units > unit) // the second unit of a pair
            return element;
    }
    return unit < 0 ? unit : element;
}

int TwinText::unitPosition(int position) const noexcept
{
    if constexpr (sizeof(TWideTwin) == sizeof(TCodeUnit))
        return position;
    if (position > m_count)
        return m_length + 1;
    int units = std::min(position, 0);
    for (int element = 0; element < position; ++element)
        units += vansys::detail::UnitsOfCodePoint(static_cast<std::uint32_t>(m_text[element]));
    return units;
}

// Latin code pages

TStringCore TStringCore::fromLatin1(char const *bytes, int count)
{
    TStringCore result;
    if (!bytes)
        return result;
    int const length = Measure(bytes, count);
    std::transform(bytes, bytes + length, result.m_storage.setLengthForOverwrite(length), widen);
    return result;
}

TStringCore TStringCore::fromLatin9(char const *bytes, int count)
{
    TStringCore result = fromLatin1(bytes, count);
    for (TCodeUnit &unit : result)
    {
        for (Latin9Row const &row : Latin9Rows)
        {
            if (unit == row.byte)
            {
                unit = row.unit;
                break;
            }
        }
    }
    return result;
}

std::string TStringCore::toLatin1(bool *complete) const
{
    return ToNarrow(*this, Latin1Byte, complete);
}

std::string TStringCore::toLatin9(bool *complete) const
{
    return ToNarrow(*this, Latin9Byte, complete);
}
