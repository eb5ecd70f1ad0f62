/// @file
/// TFormatStringCore: messages from a format string with numbered markers.
#pragma once

#include "vansys/Export.h"
#include "vansys/TCodeUnit.h"
#include "vansys/TStringCore.h"
#include "vansys/VantrelExceptionOf.h"
#include "vansys/detail/FormatScanner.h"

#include <cstddef>
#include <initializer_list>
#include <type_traits>
#include <vector>

namespace vansys::detail
{

/// From 2 up to 10 values of which each is a string or converts to one.
template <class... Values>
using EnableIfStrings = std::enable_if_t<(sizeof...(Values) >= 2) && (sizeof...(Values) <= 10) &&
                                         (std::is_convertible_v<Values const &, TStringCore> && ...)>;

template <class Value>
inline constexpr bool IsCharacterType =
    std::is_same_v<Value, TCodeUnit> || std::is_same_v<Value, TWideTwin> || std::is_same_v<Value, char> ||
    std::is_same_v<Value, char32_t> || std::is_same_v<Value, Utf8Character>;

/// An integer that is no character, or an enumeration that converts to one.
template <class Value>
using EnableIfCount = std::enable_if_t<(std::is_integral_v<Value> && !IsCharacterType<Value>) ||
                                       (std::is_enum_v<Value> && std::is_convertible_v<Value, int>)>;

} // namespace vansys::detail

/// A format string with markers, and the arguments that take their place:
///
///     TFormatStringCore(u"%2 of %1").arg(folder).arg(count).result()
///
/// `%1` to `%99` stand for the arguments, in the order in which they are bound; `%%` stands for "%". A marker
/// may come any number of times and in any order, and numbers may be left out. Arguments are text as it
/// stands: markers in them mean nothing.
///
/// A format string is rejected, when it is set, with the `Exception`
///
/// | for | message |
/// |---|---|
/// | `%0`, `%01` | "Leading zero in marker number in format string." |
/// | `%x`, `% 1` | "Invalid numberless marker in format string." |
/// | `%100`, `%123` | "Invalid marker number > 99 in format string." |
/// | a single `%` at the end | "Format string ends with an incomplete marker." |
///
/// There are two more, "Invalid marker number <= 0 in format string." and "Format string ends with an invalid
/// marker number <= 0.", which no text brings about as long as "0" is the first of all digits.
///
/// Each decimal digit of Unicode (`TCType::isDigit`) makes a marker, but its value is always its unit less
/// 0x30. So a single digit that is not ASCII is a marker with a number of a thousand or more, for which there
/// are hardly ever enough arguments: write ASCII digits.
///
/// The format string alone serves as the redacted form of a message (`VantrelException`). So keep whatever is
/// not for everybody's eyes out of it, and bind it. `TFormatLiteral` and `FormatText` check format strings
/// while compiling.
///
/// Whatever throws leaves the object as it was; a failing allocation is `std::bad_alloc`, or
/// `TStringCore::Exception` where text is made. One object belongs to one thread at a time.
///
/// `arg` returns the object itself, also when that is a temporary: use the chain where it ends, or copy it,
/// but keep no reference.
class VANSYS_API TFormatStringCore
{
public:
    class Exception;

    /// Explicit, because a text that may contain any "%" is not meant to become a format by itself.
    explicit TFormatStringCore(TStringCore const &format);
    explicit TFormatStringCore(TStringCore &&format);
    explicit TFormatStringCore(TCodeUnit const *format);
    explicit TFormatStringCore(TWideTwin const *format);
    explicit TFormatStringCore(char const *utf8);

    TFormatStringCore(TFormatStringCore const &other);

    /// The other becomes the empty format without arguments.
    TFormatStringCore(TFormatStringCore &&other) noexcept;

    ~TFormatStringCore();

    TFormatStringCore &operator=(TFormatStringCore const &other);
    TFormatStringCore &operator=(TFormatStringCore &&other) noexcept;

    /// Sets another format string; the arguments stay bound. Takes literals too.
    TFormatStringCore &operator=(TStringCore const &format);

    // Binding the next arguments. A positive field width right-justifies the value, a negative one
    // left-justifies it, with `fill` in the rest of the field; what is longer is never cut.

    TFormatStringCore &arg(TStringCore value, int fieldWidth = 0, TCodeUnit fill = u' ');

    /// One unit, a code point, or a byte that is widened to a unit, as a text of its own.
    template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
    TFormatStringCore &arg(Character unit, int fieldWidth = 0, TCodeUnit fill = u' ')
    {
        return arg(TStringCore(unit, 1), fieldWidth, fill);
    }

    /// Two to ten strings, or what converts to strings, in order. All of them are bound, or none.
    template <class... Strings, class = vansys::detail::EnableIfStrings<Strings...>>
    TFormatStringCore &arg(Strings const &...values)
    {
        return bind({&asString(values)...});
    }

    /// All elements, in order; or none, when it throws.
    TFormatStringCore &arg(std::vector<TStringCore> const &values);

    /// An integer of any type as `TStringCore::number` gives it. `fill` pads the field and is not part of the
    /// number: with "0", -5 in a field of 4 is "00-5".
    template <class Integer, class = vansys::detail::EnableIfCount<Integer>>
    TFormatStringCore &arg(Integer value, int fieldWidth = 0, int base = 10, TCodeUnit fill = u' ')
    {
        return arg(TStringCore::number(value, base), fieldWidth, fill);
    }

    /// A floating-point number as `TStringCore::number` gives it; a negative precision means 6.
    template <class Floating, std::enable_if_t<std::is_floating_point_v<Floating>, int> = 0>
    TFormatStringCore &arg(Floating value, int fieldWidth = 0, char format = 'g', int precision = -1,
                           TCodeUnit fill = u' ', bool tidy = false)
    {
        return arg(TStringCore::number(static_cast<double>(value), format, precision, tidy), fieldWidth,
                   fill);
    }

    /// A character is neither a width nor a base, though it would convert to one: bind a character by an
    /// `arg` of its own, and give a fill its place.
    template <class Value, class Character, class... Rest,
              class = vansys::detail::EnableIfCharacter<Character>>
    TFormatStringCore &arg(Value const &, Character, Rest const &...) = delete;
    template <class Integer, class Character, class... Rest, class = vansys::detail::EnableIfCount<Integer>,
              class = vansys::detail::EnableIfCharacter<Character>>
    TFormatStringCore &arg(Integer, int, Character, Rest const &...) = delete;

    /// This object, to start a chain with.
    TFormatStringCore &args() noexcept { return *this; }

    /// Unbinds all arguments. The format string stays.
    void clearParms() noexcept { m_arguments.clear(); }

    /// The format string, with its markers.
    TStringCore const &formatString() const noexcept { return m_format; }

    /// The text, with the arguments in place of the markers. Arguments without a marker are left out.
    ///
    /// With fewer arguments than the highest marker asks for, throws an `Exception` with the message
    /// "Insufficient parameters to format string (have %1, need %2: format string = "%3")", where the two
    /// numbers and the format string take the places of its markers.
    TStringCore result() const;
    operator TStringCore() const { return result(); }

private:
    static TStringCore const &asString(TStringCore const &value) noexcept { return value; }

    void scanForMarkers();
    void swapFormat(TFormatStringCore &other) noexcept;
    void makeRoomForArguments(std::size_t count);
    TFormatStringCore &bind(std::initializer_list<TStringCore const *> values);

    int m_highestNumber = 0;
    std::vector<vansys::detail::FormatMarker> m_markers; ///< in the order of the text
    std::vector<TStringCore> m_arguments;
    TStringCore m_format;
};

/// A format string that is none, or too few arguments. Cloned and re-thrown as its own type.
class VANSYS_API TFormatStringCore::Exception : public VantrelExceptionOf<TFormatStringCore::Exception>
{
public:
    using VantrelExceptionOf::VantrelExceptionOf;

    Exception(Exception const &) = default;
    Exception &operator=(Exception const &) = default;
    ~Exception() override;
};
