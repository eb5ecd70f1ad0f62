#include "main/vansys/path/NativeBytes.h"

#include "main/vansys/path/PathText.h"
#include "main/vansys/string/StringAccess.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace vansys::detail
{
namespace
{

/// The unit that stands for a byte which is no text: these, and the back slash, which would be a separator.
constexpr char16_t EscapeBase = 0xDC00;

bool IsEscape(TCodeUnit unit) noexcept
{
    return (unit >= EscapeBase + 0x80 && unit <= EscapeBase + 0xFF) || unit == EscapeBase + '\\';
}

struct CodePoint
{
    std::uint32_t value;
    int length; ///< in bytes; 0 when there is none at the front
};

/// The code point that the bytes begin with. Strict: no surrogates, nothing above U+10FFFF, and nothing
/// longer than it has to be, so that a code point has one form in bytes (the Unicode Standard, table 3-7).
CodePoint DecodeOne(unsigned char const *bytes, std::size_t count) noexcept
{
    unsigned const first = bytes[0];
    if (first < 0x80)
        return {first, 1};
    int const length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || count < static_cast<std::size_t>(length))
        return {0, 0};
    std::uint32_t value = first & (0x7Fu >> length);
    for (int i = 1; i < length; ++i)
    {
        if ((bytes[i] & 0xC0) != 0x80)
            return {0, 0};
        value = value << 6 | (bytes[i] & 0x3Fu);
    }
    static constexpr std::uint32_t Least[] = {0, 0, 0x80, 0x800, 0x10000};
    bool const isSurrogate = value >= 0xD800 && value < 0xE000;
    if (value < Least[length] || value > 0x10FFFF || isSurrogate)
        return {0, 0};
    return {value, length};
}

} // namespace

TStringCore DecodeNativeBytes(std::string_view bytes)
{
    auto const *from = reinterpret_cast<unsigned char const *>(bytes.data());
    std::size_t left = bytes.size();
    // Each byte becomes a unit at most.
    StringStorage storage;
    TCodeUnit *const units =
        storage.setLengthForOverwrite(StringStorage::checkedLength(static_cast<std::int64_t>(left)));
    TCodeUnit *to = units;
    while (left > 0)
    {
        auto const [value, length] = DecodeOne(from, left);
        int const taken = std::max(length, 1);
        if (length == 0 || value == '\\')
            *to++ = static_cast<TCodeUnit>(EscapeBase + *from);
        else if (value < 0x10000)
            *to++ = static_cast<TCodeUnit>(value);
        else
        {
            *to++ = static_cast<TCodeUnit>(0xD7C0 + (value >> 10));
            *to++ = static_cast<TCodeUnit>(0xDC00 + (value & 0x3FF));
        }
        from += taken;
        left -= static_cast<std::size_t>(taken);
    }
    storage.setLength(static_cast<int>(to - units));
    return StringAccess::Adopt(std::move(storage));
}

std::string EncodeNativeBytes(TStringCore const &text)
{
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(text.length()));
    TCodeUnit const *const units = text.constData();
    int const length = text.length();
    auto const append = [&bytes](std::uint32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    for (int i = 0; i < length; ++i)
    {
        std::uint32_t value = units[i];
        if (value < 0x80)
        {
            append(value == NativeSeparator ? std::uint32_t{Separator} : value);
            continue;
        }
        bool const isPair = value >= 0xD800 && value < 0xDC00 && i + 1 < length && units[i + 1] >= 0xDC00 &&
                            units[i + 1] < 0xE000;
        if (isPair)
        {
            value = 0x10000 + ((value - 0xD800) << 10) + (units[++i] - 0xDC00u);
            append(0xF0 | value >> 18);
            append(0x80 | (value >> 12 & 0x3F));
        }
        else if (IsEscape(units[i]))
        {
            append(value - EscapeBase);
            continue;
        }
        else if (value < 0x800)
        {
            append(0xC0 | value >> 6);
            append(0x80 | (value & 0x3F));
            continue;
        }
        else
            append(0xE0 | value >> 12);
        append(0x80 | (value >> 6 & 0x3F));
        append(0x80 | (value & 0x3F));
    }
    return bytes;
}

TStringCore TextForHost(TStringCore const &text)
{
    TStringCore result = text;
    return result.replace(NativeSeparator, Separator);
}

} // namespace vansys::detail
