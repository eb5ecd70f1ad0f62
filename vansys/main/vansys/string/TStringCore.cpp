#include "vansys/TStringCore.h"

#include "main/vansys/string/RawText.h"
#include "vansys/THash.h"

#include <algorithm>
#include <functional>

using vansys::StringFunctions;
using vansys::detail::CopyUnits;
using vansys::detail::MoveUnits;

namespace
{

[[noreturn]] void ThrowOutOfRange(char const *message)
{
    throw TStringCore::Exception(message);
}

} // namespace

// Assignment

bool TStringCore::inSelf(void const *address) const noexcept
{
    // std::less orders pointers into different objects too.
    std::less<void const *> const before;
    return !before(address, cbegin()) && !before(cend(), address);
}

void TStringCore::construct(TCodeUnit const *text, int count)
{
    int const length = count < 0 ? TStringCore::length(text) : count;
    if (text)
        CopyUnits(m_storage.setLengthForOverwrite(length), text, length);
    else
        clear();
}

TStringCore &TStringCore::assign(TCodeUnit const *text, int count)
{
    if (inSelf(text))
        return assignFromSelf(static_cast<int>(text - constData()), count);
    construct(text, count);
    return *this;
}

/// The text does not grow, so all that can move it is detaching.
TStringCore &TStringCore::assignFromSelf(int position, int count)
{
    TCodeUnit *const units = data();
    int const rest = length() - position;
    int const kept = count < 0 ? TStringCore::length(units + position) : std::min(count, rest);
    MoveUnits(units, units + position, kept);
    m_storage.setLength(kept);
    return *this;
}

TStringCore &TStringCore::assignRepeated(TCodeUnit const *units, int count, int times)
{
    using vansys::detail::StringStorage;
    int const length = StringStorage::checkedLength(std::int64_t{count} * std::max(times, 0));
    TCodeUnit *const out = m_storage.setLengthForOverwrite(length);
    for (int i = 0; i < length; i += count)
        CopyUnits(out + i, units, count);
    return *this;
}

// Access

TCodeUnit TStringCore::at(int index) const
{
    if (index < 0 || index > length())
        ThrowOutOfRange("TStringCore::at(int): argument out of range.");
    return constData()[index];
}

TCodeUnit const &TStringCore::operator[](int index) const
{
    if (index < 0 || index > length())
        ThrowOutOfRange("TStringCore::operator[int] const argument out of range.");
    return constData()[index];
}

TCodeUnit const &TStringCore::operator[](unsigned int index) const
{
    if (index > static_cast<unsigned int>(length()))
        ThrowOutOfRange("TStringCore::operator[size_type] const argument out of range.");
    return constData()[index];
}

TCodeUnit &TStringCore::operator[](int index)
{
    if (index < 0 || index > length())
        ThrowOutOfRange("TStringCore::operator[int] argument out of range.");
    return data()[index];
}

TCodeUnit &TStringCore::operator[](unsigned int index)
{
    if (index > static_cast<unsigned int>(length()))
        ThrowOutOfRange("TStringCore::operator[size_type] argument out of range.");
    return data()[index];
}

TStringCore::operator std::u16string_view() const noexcept
{
    return {reinterpret_cast<char16_t const *>(constData()), static_cast<std::size_t>(length())};
}

// Length

void TStringCore::resize(int length)
{
    int const before = this->length();
    m_storage.setLength(length);
    if (length > before)
        std::fill(data() + before, data() + length, TCodeUnit{0});
}

int StringFunctions::length(TCodeUnit const *text)
{
    if (!text)
        return 0;
    std::size_t const length = std::char_traits<TCodeUnit>::length(text);
    return vansys::detail::StringStorage::checkedLength(static_cast<std::int64_t>(length));
}

int StringFunctions::length(TWideTwin const *text)
{
    if (!text)
        return 0;
    std::size_t const length = std::char_traits<TWideTwin>::length(text);
    return vansys::detail::StringStorage::checkedLength(static_cast<std::int64_t>(length));
}

std::size_t StringFunctions::lengthInBytes(TCodeUnit const *text)
{
    return text ? std::char_traits<TCodeUnit>::length(text) * sizeof(TCodeUnit) : 0;
}

std::size_t StringFunctions::lengthInBytes(TWideTwin const *text)
{
    return text ? std::char_traits<TWideTwin>::length(text) * sizeof(TWideTwin) : 0;
}

// Appending

TStringCore &TStringCore::append(TCodeUnit const *text, int count)
{
    if (!text)
        return *this;
    if (inSelf(text))
        return appendFromSelf(static_cast<int>(text - constData()), count);
    int const added = count < 0 ? TStringCore::length(text) : count;
    if (added == 0)
        return *this;
    int const before = length();
    m_storage.setLength(vansys::detail::StringStorage::checkedLength(std::int64_t{before} + added));
    CopyUnits(m_storage.writableUnits() + before, text, added);
    return *this;
}

/// Works by position: growing or detaching moves the text away from where the source was.
TStringCore &TStringCore::appendFromSelf(int position, int count)
{
    int const before = length();
    int const rest = before - position;
    int const added = count < 0 ? TStringCore::length(constData() + position) : std::min(count, rest);
    if (added == 0)
        return *this;
    m_storage.setLength(vansys::detail::StringStorage::checkedLength(std::int64_t{before} + added));
    TCodeUnit *const units = m_storage.writableUnits();
    CopyUnits(units + before, units + position, added);
    return *this;
}

// Byte-order mark

void TStringCore::prependBOM()
{
    int const before = length();
    m_storage.setLength(vansys::detail::StringStorage::checkedLength(std::int64_t{before} + 1));
    TCodeUnit *const units = m_storage.writableUnits();
    MoveUnits(units + 1, units, before);
    units[0] = ByteOrderMark;
}

void TStringCore::removeBOM()
{
    if (hasBOM())
        assignFromSelf(1, length() - 1);
}

// Hash

std::size_t std::hash<TStringCore>::operator()(TStringCore const &text) const noexcept
{
    return static_cast<std::size_t>(
        THash64(text.constData(), static_cast<unsigned int>(text.lengthInBytes()), 0));
}

// Growth

void TStringCore::EnableConservativeString() noexcept
{
    vansys::detail::StringStorage::enableConservativeGrowth();
}

bool TStringCore::IsConservativeString() noexcept
{
    return vansys::detail::StringStorage::isConservativeGrowth();
}

// Exception

TStringCore::Exception *TStringCore::Exception::Clone() const
{
    return new Exception(*this);
}

void TStringCore::Exception::Throw() const
{
    throw Exception(*this);
}
