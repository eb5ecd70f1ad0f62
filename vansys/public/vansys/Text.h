/// @file
/// Text: a parameter that takes text in each of its forms.
#pragma once

#include "vansys/Export.h"
#include "vansys/Forward.h"
#include "vansys/StringFunctions.h"
#include "vansys/TCodeUnit.h"
#include "vansys/detail/StringStorage.h"

#include <cstddef>

namespace vansys
{

/// A parameter that takes text in each of its forms, and makes code units of it:
/// - a `TStringCore`, zero units included;
/// - zero-terminated text of `TCodeUnit` or its twin; null is a text without units, of which `isNull` is
/// true;
/// - zero-terminated UTF-8;
/// - one unit: a `TCodeUnit`, a code point in a `TWideTwin`, or a `char`, which is widened and not decoded.
///
/// It lives as long as the call. Strings and `TCodeUnit` text are looked at where they are. Making it of the
/// rest may throw `TStringCore::Exception`: "Out of memory" where text is transcoded; of text that is longer
/// than any `int`, "Appended string is too long" when it is UTF-8 and "Allocation size less than zero;
/// probable overflow" when it is wide.
class VANSYS_API Text
{
public:
    inline Text(TStringCore const &text) noexcept; // in TStringCore.h

    Text(std::nullptr_t) noexcept : m_units(nullptr), m_length(0) {}

    Text(TCodeUnit const *text) : m_units(text), m_length(StringFunctions::length(text)) {}

    Text(TWideTwin const *text);

    Text(char const *utf8);

    Text(TCodeUnit unit) noexcept : m_units(m_own.setLengthForOverwrite(1)), m_length(1)
    {
        *m_own.writableUnits() = unit;
    }

    Text(TWideTwin codePoint) noexcept;

    Text(char byte) noexcept : Text(static_cast<TCodeUnit>(static_cast<unsigned char>(byte))) {}

    Text(Text const &) = delete;
    Text &operator=(Text const &) = delete;

    TCodeUnit const *units() const noexcept { return m_units; }

    int length() const noexcept { return m_length; }

    bool isNull() const noexcept { return !m_units; }

    bool isEmpty() const noexcept { return m_length == 0; }

    /// Whether it was given as code points: as UTF-8, or in the twin where that is UTF-32. As a set, such
    /// text is one of code points, so that no half of a character matches; other text is a set of units.
    bool isCodePoints() const noexcept { return m_isCodePoints; }

private:
    detail::StringStorage m_own; ///< the units, where they are not the caller's
    TCodeUnit const *m_units;
    int m_length;
    bool m_isCodePoints = false;
};

} // namespace vansys

// For the constructor from a string. Here, because the string's own header needs the class above.
#include "vansys/TStringCore.h"
