/// @file
/// What the string operations take as text.
#pragma once

#include "vansys/Export.h"
#include "vansys/TCodeUnit.h"
#include "vansys/detail/StringFunctions.h"
#include "vansys/detail/StringStorage.h"

#include <cstddef>
#include <type_traits>

class TStringCore;

namespace vansys::detail
{

/// The character types that one unit of text may be given in.
template <class Character>
using EnableIfCharacter =
    std::enable_if_t<std::is_same_v<Character, TCodeUnit> || std::is_same_v<Character, TWideTwin> ||
                     std::is_same_v<Character, char>>;

/// A parameter that takes text in each of its forms, and makes code units of it:
/// - a `TStringCore`, zero units included;
/// - zero-terminated text of `TCodeUnit` or its twin; null is a text without units, of which `isNull` is
/// true;
/// - zero-terminated UTF-8;
/// - one unit: a `TCodeUnit`, a code point in a `TWideTwin`, or a `char`, which is widened and not decoded.
///
/// It lives as long as the call. Strings and `TCodeUnit` text are looked at where they are; what has to be
/// transcoded may throw `TStringCore::Exception` "Out of memory".
class VANSYS_API TextArgument
{
public:
    inline TextArgument(TStringCore const &text) noexcept; // in TStringCore.h

    TextArgument(std::nullptr_t) noexcept : m_units(nullptr), m_length(0) {}

    TextArgument(TCodeUnit const *text) : m_units(text), m_length(StringFunctions::length(text)) {}

    TextArgument(TWideTwin const *text);

    TextArgument(char const *utf8);

    TextArgument(TCodeUnit unit) noexcept : m_units(m_own.setLengthForOverwrite(1)), m_length(1)
    {
        *m_own.writableUnits() = unit;
    }

    TextArgument(TWideTwin codePoint) noexcept;

    TextArgument(char byte) noexcept : TextArgument(static_cast<TCodeUnit>(static_cast<unsigned char>(byte)))
    {
    }

    TextArgument(TextArgument const &) = delete;
    TextArgument &operator=(TextArgument const &) = delete;

    TCodeUnit const *units() const noexcept { return m_units; }

    int length() const noexcept { return m_length; }

    bool isNull() const noexcept { return !m_units; }

    bool isEmpty() const noexcept { return m_length == 0; }

private:
    StringStorage m_own; ///< the units, where they are not the caller's
    TCodeUnit const *m_units;
    int m_length;
};

} // namespace vansys::detail
