/// @file
/// Format strings that are checked while compiling: TFormatLiteral, FormatText, CheckedFormat.
#pragma once

#include "vansys/Export.h"
#include "vansys/Forward.h"
#include "vansys/TCodeUnit.h"
#include "vansys/TFormatStringCore.h"
#include "vansys/TStringCore.h"
#include "vansys/detail/FormatLiteralCheck.h"

#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <type_traits>

// Clang has consteval before it says so.
#if defined(__cpp_consteval) || (defined(__clang_major__) && __clang_major__ >= 14 && __cplusplus >= 202002L)
#    define VANSYS_CONSTEVAL consteval
#else
#    define VANSYS_CONSTEVAL constexpr
#endif

namespace vansys::detail
{

using Units = std::basic_string_view<TCodeUnit>;

inline Units UnitsOf(TStringCore const &text) noexcept
{
    return Units(text.constData(), static_cast<std::size_t>(text.length()));
}

/// The text that `TFormatStringCore::arg` binds for a value.
inline TStringCore const &ArgumentText(TStringCore const &value) noexcept
{
    return value;
}

template <class Value, class = std::enable_if_t<!std::is_convertible_v<Value const &, TStringCore>>>
TStringCore ArgumentText(Value const &value)
{
    if constexpr (IsCharacterType<Value>)
        return TStringCore(value, 1);
    else if constexpr (std::is_floating_point_v<Value>)
        return TStringCore::number(static_cast<double>(value));
    else
        return TStringCore::number(value);
}

/// The format string with the arguments in place of its markers. Throws as `TFormatStringCore` does.
VANSYS_API TStringCore FormatUnits(Units format, std::initializer_list<Units> arguments);

} // namespace vansys::detail

/// A format string in a literal, which the compiler rejects where `TFormatStringCore` would:
///
///     TFormatLiteral(u"%1 of %2").arg(done, 8).arg(all, 8)
///
/// `FormatText` and `CheckedFormat`, where it is a parameter, know the number of arguments too.
///
/// The literal is of either wide type or UTF-8. What the compiler says contains the message that
/// `TFormatStringCore::Exception` would have, or, when there are fewer arguments than the highest marker asks
/// for, "Insufficient parameters to format string".
///
/// In C++17, the compiler checks `constexpr` variables of this type; everything else is checked as it is
/// used.
///
/// Only while running is it known which digits the selected ICU knows. The compiler takes those of
/// Unicode 15.
///
/// @tparam ArgumentCount how many arguments there will be; any number when it is negative
template <int ArgumentCount> // -1 by default: see Forward.h
class TFormatLiteral
{
public:
    VANSYS_CONSTEVAL TFormatLiteral(TCodeUnit const *text)
        : m_units(text ? vansys::detail::Units(text) : vansys::detail::Units())
    {
        check(text);
    }

    VANSYS_CONSTEVAL TFormatLiteral(TWideTwin const *text) : m_twin(text) { check(text); }
    VANSYS_CONSTEVAL TFormatLiteral(char const *text) : m_narrow(text) { check(text); }
    VANSYS_CONSTEVAL TFormatLiteral(vansys::detail::Utf8Character const *text) : m_utf8(text) { check(text); }

    /// The format string.
    TStringCore formatString() const
    {
        return m_twin     ? TStringCore(m_twin)
               : m_narrow ? TStringCore(m_narrow)
               : m_utf8   ? TStringCore(m_utf8)
                          : TStringCore(m_units.data(), static_cast<int>(m_units.size()));
    }

    operator TFormatStringCore() const { return TFormatStringCore(formatString()); }

    /// A format with its first arguments bound, as `TFormatStringCore::arg` binds them: the start of a chain.
    template <class... Arguments>
    TFormatStringCore arg(Arguments const &...arguments) const
    {
        TFormatStringCore format = *this;
        format.arg(arguments...);
        return format;
    }

    /// What `FormatText` gives.
    template <class... Arguments>
    TStringCore text(Arguments const &...arguments) const
    {
        using namespace vansys::detail;
        auto const format = [&](Units units)
        { return FormatUnits(units, {UnitsOf(ArgumentText(arguments))...}); };
        return m_units.data() ? format(m_units) : format(UnitsOf(formatString()));
    }

private:
    template <class Character>
    static constexpr void check(Character const *text)
    {
        if (__builtin_is_constant_evaluated())
            vansys::detail::CheckFormatLiteral(text, ArgumentCount);
    }

    // One of them is the text.
    vansys::detail::Units m_units;
    TWideTwin const *m_twin = nullptr;
    char const *m_narrow = nullptr;
    vansys::detail::Utf8Character const *m_utf8 = nullptr;
};

#undef VANSYS_CONSTEVAL

/// The text of the format string with the arguments in place of its markers: strings, or what converts to
/// strings, units, and numbers, as `TFormatStringCore::arg` takes them, without width. The compiler rejects a
/// format string that is none, and one that asks for more arguments:
///
///     TStringCore const progress = FormatText(u"%1 of %2", done, all);
///
/// It is faster than a `TFormatStringCore`, which keeps the format string and the arguments.
template <class... Arguments>
TStringCore FormatText(TFormatLiteral<static_cast<int>(sizeof...(Arguments))> format,
                       Arguments const &...arguments)
{
    return format.text(arguments...);
}

/// The format with each of the arguments bound, for messages that are to have a redacted form; otherwise as
/// `FormatText`:
///
///     throw VantrelException(CheckedFormat(u"No file \"%1\" in %2", name, folder));
template <class... Arguments>
TFormatStringCore CheckedFormat(TFormatLiteral<static_cast<int>(sizeof...(Arguments))> format,
                                Arguments const &...arguments)
{
    TFormatStringCore result = format;
    (result.arg(arguments), ...);
    return result;
}
