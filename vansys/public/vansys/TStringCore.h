/// @file
/// TStringCore: the one string type of the library.
#pragma once

#include "vansys/Export.h"
#include "vansys/TCodeUnit.h"
#include "vansys/detail/StringStorage.h"

#include <cstddef>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace vansys::detail
{

/// The character types that one unit of text may be given in.
template <class Character>
using EnableIfCharacter =
    std::enable_if_t<std::is_same_v<Character, TCodeUnit> || std::is_same_v<Character, TWideTwin> ||
                     std::is_same_v<Character, char>>;

/// Index types for which neither `int` nor `unsigned int` is the one best match.
template <class Index>
using EnableIfLongIndex =
    std::enable_if_t<std::is_same_v<Index, long> || std::is_same_v<Index, unsigned long> ||
                     std::is_same_v<Index, long long> || std::is_same_v<Index, unsigned long long>>;

/// The element of `u8"..."` literals; in C++17, where that is `char`, a type that nothing has.
#if defined(__cpp_char8_t)
using Utf8Character = char8_t;
#else
enum class Utf8Character : unsigned char
{
};
#endif

} // namespace vansys::detail

/// A mutable sequence of UTF-16 code units that is always followed by a zero unit.
///
/// Up to 14 units are held inside the object, which is 32 bytes in size. Longer text lives in a heap block
/// that copies share, and that is copied before the first write through one of them. Copying and destroying
/// a string therefore never throws and never copies more than 32 bytes of text.
///
/// **Text.** Narrow text (`char const *`, `std::string`) is UTF-8 unless a function says otherwise. Wide text
/// comes in two types, `TCodeUnit` and its twin `TWideTwin` (see TCodeUnit.h). Nothing checks that surrogates
/// come in pairs. Zero units inside the text are ordinary units.
///
/// **Positions and counts** are `int` counts of code units. A negative count of given text means "up to the
/// first zero". A null pointer to text is never an error: it constructs or assigns the empty text and appends
/// nothing. A source that lies inside the string's own characters works; a count that would run past their
/// end is cut short.
///
/// **Counted narrow text** that is decoded as UTF-8 must be readable at index `count` too (a string literal
/// and a `std::string` are): the byte there decides about a sequence that is cut off by the count.
///
/// **Memory.** A string that has moved to the heap stays there when it gets shorter. It becomes inline again
/// when an inline string is assigned to it while its block is shared, when it is moved from, and when it is
/// assigned to by move from an inline string. Growth doubles the capacity; see `EnableConservativeString`.
///
/// **Failures** are `TStringCore::Exception`, and leave the string as it was:
/// "Out of memory" when the heap gives nothing; "Allocation size less than zero; probable overflow" when the
/// text would pass the largest capacity that an `int` can hold.
///
/// **Threads.** One object belongs to one thread at a time. Strings that share a block are independent
/// objects in this regard: they may be read, written, copied and destroyed by different threads at the same
/// time.
///
/// **Traps** of a string that shares and converts to a pointer:
/// - A reference or pointer that was taken for writing before a copy was made writes into both strings:
///   `TCodeUnit &unit = a[0]; TStringCore b = a; unit = u'x';` changes `b`. Take it after the copy.
/// - `s[s.length()]` is the terminator. The non-const operators let it be overwritten, which breaks every
///   reader that relies on it.
/// - `data()`, `begin()`, `front()`, `s[i]` and the like detach on a string that is not const. Use
///   `constData()`, `cbegin()` or `at()` to read.
/// - Where a function wants a pointer, the text ends at its first zero unit; `std::u16string(s)` takes the
///   pointer. Use `toStdUString()`, or the view.
class VANSYS_API TStringCore
{
public:
    class Exception;

    using value_type = TCodeUnit;
    using size_type = unsigned int;
    using difference_type = std::ptrdiff_t;
    using reference = TCodeUnit &;
    using const_reference = TCodeUnit const &;
    using iterator = TCodeUnit *;
    using const_iterator = TCodeUnit const *;
    using reverse_iterator = std::reverse_iterator<iterator>;
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;

    // Construction and assignment

    /// The empty text.
    constexpr TStringCore() noexcept = default;

    /// The empty text.
    TStringCore(std::nullptr_t) noexcept {}

    /// Shares the other's block, or copies its inline units.
    TStringCore(TStringCore const &) noexcept = default;

    /// Takes over the other's storage. The other is empty and inline afterwards.
    TStringCore(TStringCore &&) noexcept = default;

    ~TStringCore() = default;

    /// Copies `count` units.
    TStringCore(TCodeUnit const *text, int count = -1)
    {
        // What fits inline goes there at once, in a few instructions where the count is known.
        if (text && static_cast<unsigned int>(count) < vansys::detail::StringStorage::InlineCapacity)
            std::memcpy(m_storage.setLengthForOverwrite(count), text,
                        static_cast<unsigned int>(count) * sizeof *text);
        else
            construct(text, count);
    }

    TStringCore(TWideTwin const *text, int count = -1) { assign(text, count); }

    /// Decodes `count` bytes of UTF-8; see `fromUtf8`.
    TStringCore(char const *utf8, int count = -1);
    TStringCore(vansys::detail::Utf8Character const *utf8, int count = -1)
        : TStringCore(reinterpret_cast<char const *>(utf8), count)
    {
    }

    /// `count` copies of `unit`; none when the count is negative.
    TStringCore(TCodeUnit unit, int count) { assign(unit, count); }

    /// `count` copies of the code point, which may take two units each.
    TStringCore(TWideTwin codePoint, int count) { assign(codePoint, count); }

    /// `count` copies of the byte, widened to a unit of the same value (0 to 255), not decoded.
    TStringCore(char byte, int count) { assign(byte, count); }

    /// Copies the units of a view. Explicit, because it may allocate.
    explicit TStringCore(std::u16string_view text);
    explicit TStringCore(std::wstring_view text);

    /// Shares the other's block, or copies its inline units into this string's own memory. Assigning a string
    /// to itself does nothing.
    TStringCore &operator=(TStringCore const &) noexcept = default;

    /// Gives back this string's storage and takes over the other's. The other is empty and inline afterwards.
    TStringCore &operator=(TStringCore &&) noexcept = default;

    /// A text of one unit: a `TCodeUnit`, a widened byte, or what a `TWideTwin` converts to.
    /// (A template, so that `s = {}` is the empty text and not a zero unit.)
    template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
    TStringCore &operator=(Character unit)
    {
        return assign(unit, 1);
    }

    /// The same as `assign(text)`.
    template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
    TStringCore &operator=(Character const *text)
    {
        return assign(text);
    }

    TStringCore &assign(TStringCore const &other) noexcept { return *this = other; }

    TStringCore &assign(TCodeUnit const *text, int count = -1);
    TStringCore &assign(TWideTwin const *text, int count = -1);
    TStringCore &assign(char const *utf8, int count = -1);

    TStringCore &assign(TCodeUnit unit, int count) { return assignRepeated(&unit, 1, count); }

    TStringCore &assign(TWideTwin codePoint, int count);

    TStringCore &assign(char byte, int count) { return assign(widen(byte), count); }

    /// Another name of `assign`.
    TStringCore &set(TCodeUnit const *text, int count = -1) { return assign(text, count); }
    TStringCore &set(TWideTwin const *text, int count = -1) { return assign(text, count); }

    /// Replaces the text by `count` copies of `unit`; by none when the count is negative.
    TStringCore &fill(TCodeUnit unit, int count) { return assign(unit, count); }
    TStringCore &fill(TWideTwin codePoint, int count) { return assign(codePoint, count); }
    TStringCore &fill(char byte, int count) { return assign(byte, count); }

    /// Exchanges the storage of both strings.
    void swap(TStringCore &other) noexcept { m_storage.swap(other.m_storage); }
    friend void swap(TStringCore &first, TStringCore &second) noexcept { first.swap(second); }

    // Conversion in

    /// Decodes `count` bytes of UTF-8.
    ///
    /// Decoding never fails. U+FFFD stands for a byte that cannot begin a sequence (0x80 to 0xBF, 0xFE,
    /// 0xFF), for a sequence that the count cuts off, and for a sequence up to the first byte that does not
    /// continue it (decoding resumes at that byte). Accepted on purpose: overlong forms (C0 80 is U+0000),
    /// the five- and six-byte forms, and surrogates in their three-byte form, which become the unit of that
    /// value. A code point above U+10FFFF becomes U+FFFD. A sequence whose last byte lies exactly at index
    /// `count` is decoded with that byte.
    static TStringCore fromUtf8(char const *utf8, int count = -1) { return TStringCore(utf8, count); }
    static TStringCore fromUtf16(TCodeUnit const *text, int count = -1) { return TStringCore(text, count); }
    static TStringCore fromUtf16(TWideTwin const *text, int count = -1) { return TStringCore(text, count); }
    static TStringCore fromWChar(TCodeUnit const *text, int count = -1) { return TStringCore(text, count); }
    static TStringCore fromWChar(TWideTwin const *text, int count = -1) { return TStringCore(text, count); }

    /// Text of code points. A value above 0x10FFFF becomes U+FFFD; a surrogate becomes the unit of that
    /// value.
    static TStringCore fromUtf32(unsigned int const *codePoints, int count = -1);
    static TStringCore fromUtf32(char32_t const *codePoints, int count = -1);

    /// The bytes decoded as UTF-8, zero bytes included.
    static TStringCore fromStdString(std::string const &utf8);

    static TStringCore fromStdWString(std::wstring const &text);
    static TStringCore fromStdUString(std::u16string const &text);

    /// ISO 8859-1: each byte becomes the unit of the same value.
    static TStringCore fromLatin1(char const *bytes, int count = -1);

    /// ISO 8859-15: ISO 8859-1 but for eight bytes, the euro sign among them.
    static TStringCore fromLatin9(char const *bytes, int count = -1);

    // Conversion out

    /// The text as UTF-8. A surrogate pair becomes four bytes. A lone surrogate becomes its three-byte form,
    /// so that `fromUtf8` gives the same text back for every text.
    /// Throws `std::length_error` or `std::bad_alloc` as `std::string` does.
    std::string toStdString() const;

    /// The text as the platform's wide string: UTF-32 where `wchar_t` has 32 bits.
    std::wstring toStdWString() const;

    std::u16string toStdUString() const;

    /// Copies the text and its terminator into `buffer`, cut short so that both fit into `capacity` elements.
    /// Returns the number of elements written, the terminator excluded. Writes nothing and returns 0 when the
    /// buffer is null or `capacity` is not positive.
    int toWCharArray(TCodeUnit *buffer, int capacity) const;
    int toWCharArray(TWideTwin *buffer, int capacity) const;

    /// The text and its terminator, for interfaces that want to write into wide text.
    std::vector<wchar_t> toWCharVector() const;

    /// The text in ISO 8859-1. "?" stands for each code point that does not fit, a surrogate pair being one.
    /// `*complete` receives whether every code point was representable.
    std::string toLatin1(bool *complete = nullptr) const;

    /// The text in ISO 8859-15, as `toLatin1`.
    std::string toLatin9(bool *complete = nullptr) const;

    // Access

    /// The units, followed by a zero unit. Valid until the string is changed or destroyed.
    TCodeUnit const *constData() const noexcept { return m_storage.units(); }
    TCodeUnit const *data() const noexcept { return m_storage.units(); }

    /// The units for writing. Detaches, so it may throw; see the traps above.
    TCodeUnit *data() { return m_storage.writableUnits(); }
    operator TCodeUnit const *() const noexcept { return m_storage.units(); }

    /// A view of the text, zero units included. Valid until the string is changed or destroyed.
    operator std::u16string_view() const noexcept;

    /// `if (s)` would ask whether the pointer is null, which it never is. Write `!s.isEmpty()`.
    explicit operator bool() const = delete;

    const_iterator begin() const noexcept { return m_storage.units(); }
    const_iterator end() const noexcept { return m_storage.units() + m_storage.length(); }
    const_iterator cbegin() const noexcept { return begin(); }
    const_iterator cend() const noexcept { return end(); }
    iterator begin() { return m_storage.writableUnits(); }
    iterator end() { return m_storage.writableUnits() + m_storage.length(); }
    const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }
    const_reverse_iterator crbegin() const noexcept { return rbegin(); }
    const_reverse_iterator crend() const noexcept { return rend(); }
    reverse_iterator rbegin() { return reverse_iterator(end()); }
    reverse_iterator rend() { return reverse_iterator(begin()); }

    /// The first unit; of an empty text, the terminator.
    const_reference front() const noexcept { return *begin(); }
    reference front() { return *begin(); }

    /// The last unit; of an empty text, the terminator.
    const_reference back() const noexcept { return begin()[lastIndex()]; }
    reference back() { return begin()[lastIndex()]; }

    /// The unit at `index`, 0 to `length()`: the terminator may be asked for.
    /// Throws `Exception` "TStringCore::at(int): argument out of range.".
    TCodeUnit at(int index) const;

    /// The unit at `index`, 0 to `length()`, without (const) or with detaching. Throws `Exception`:
    /// "TStringCore::operator[int] argument out of range.",
    /// "TStringCore::operator[int] const argument out of range.",
    /// "TStringCore::operator[size_type] argument out of range." or
    /// "TStringCore::operator[size_type] const argument out of range.".
    /// Longer index types are checked in full, never cut short.
    const_reference operator[](int index) const;
    const_reference operator[](unsigned int index) const;
    reference operator[](int index);
    reference operator[](unsigned int index);

    template <class Index, class = vansys::detail::EnableIfLongIndex<Index>>
    const_reference operator[](Index index) const
    {
        return (*this)[narrowIndex(index)];
    }

    template <class Index, class = vansys::detail::EnableIfLongIndex<Index>>
    reference operator[](Index index)
    {
        return (*this)[narrowIndex(index)];
    }

    // Length and capacity

    int length() const noexcept { return m_storage.length(); }
    int size() const noexcept { return m_storage.length(); }

    /// Twice the length.
    std::size_t lengthInBytes() const noexcept
    {
        return static_cast<std::size_t>(length()) * sizeof(TCodeUnit);
    }

    /// The length with each surrogate pair counted once. Linear in the length.
    int lengthInCodePoints() const noexcept;

    bool empty() const noexcept { return length() == 0; }
    bool isEmpty() const noexcept { return length() == 0; }

    /// How many units there is room for, the terminator included: 15 for an inline text.
    int capacity() const noexcept { return m_storage.capacity(); }

    /// Makes room for at least `length` units, so that appending up to there does not allocate. Detaches.
    /// Throws `Exception` "Negative allocation size; probable overflow" for a negative length.
    void reserve(int length) { m_storage.reserve(length); }

    /// Cuts the text off, or fills it up with zero units. A negative length counts as 0.
    void resize(int length);

    /// Gives back the memory that the text does not need. A text on the heap stays there.
    void squeeze() { m_storage.squeeze(); }

    /// Makes the text empty. Keeps a block that nobody shares; never allocates.
    void clear() noexcept { m_storage.clear(); }

    /// Keeps the first `length` units; none when it is negative. Does nothing when the text is shorter.
    void truncate(int length);

    /// Removes the last `count` units; all when there are fewer. Does nothing when it is not positive.
    void chop(int count);

    // Appending. Amortised constant time for each unit.

    TStringCore &append(TStringCore const &other) { return append(other.constData(), other.length()); }

    TStringCore &append(TCodeUnit const *text, int count = -1);
    TStringCore &append(TWideTwin const *text, int count = -1);

    /// Decodes as `fromUtf8` does. The string grows to hold `count` more units before it is decoded.
    /// Throws `Exception` "Appended string is too long" when zero-terminated text is longer than any `int`.
    TStringCore &append(char const *utf8, int count = -1);

    TStringCore &append(TCodeUnit unit)
    {
        m_storage.append(unit);
        return *this;
    }

    TStringCore &append(TWideTwin codePoint);

    /// Appends the unit of the same value (0 to 255), not decoded.
    TStringCore &append(char byte) { return append(widen(byte)); }

    template <class Text>
    TStringCore &operator+=(Text const &text)
    {
        return append(text);
    }

    void push_back(TCodeUnit unit) { m_storage.append(unit); }
    void push_back(TWideTwin codePoint) { append(codePoint); }
    void push_back(char byte) { append(byte); }

    // Raw text

    /// The number of elements before the zero; 0 for null. Throws `Exception` "Allocation size less than
    /// zero; probable overflow" when no `int` can hold it.
    static int length(TCodeUnit const *text);
    static int length(TWideTwin const *text);

    /// The number of bytes before the zero; 0 for null.
    static std::size_t lengthInBytes(TCodeUnit const *text);
    static std::size_t lengthInBytes(TWideTwin const *text);

    /// The number of code points before the zero; 0 for null.
    static int lengthInCodePoints(TCodeUnit const *text);
    static int lengthInCodePoints(TWideTwin const *text);

    // Byte-order mark

    /// Whether the first unit is U+FEFF.
    bool hasBOM() const noexcept { return front() == ByteOrderMark; }

    /// Inserts U+FEFF at the front, whether there is one already or not.
    void prependBOM();

    /// Removes the first unit when it is U+FEFF.
    void removeBOM();

    // Comparison. The operators are in detail/StringComparison.h.

    /// -1, 0 or 1 as this text comes before, equals or follows the other: by code unit, as unsigned 16-bit
    /// values, the shorter text first. A null pointer is the empty text.
    int compare(TStringCore const &other) const noexcept;
    int compare(TCodeUnit const *text) const;
    int compare(TWideTwin const *text) const;
    int compare(char const *utf8) const;

    // Growth

    /// Switches the whole process to a growth rule that wastes less: capacities step through full and
    /// three-quarter powers of two. To be called once at start-up, before other threads use strings; there is
    /// no way back.
    static void EnableConservativeString() noexcept;

    static bool IsConservativeString() noexcept;

private:
    static constexpr TCodeUnit ByteOrderMark = 0xFEFF;

    /// `char` is signed on the targets: through `unsigned char`, so that 0xE9 is U+00E9.
    static constexpr TCodeUnit widen(char byte) noexcept { return static_cast<unsigned char>(byte); }

    /// An index that no `int` holds becomes one that no text has, of the same signedness.
    template <class Index>
    static auto narrowIndex(Index index) noexcept
    {
        using Narrow = std::conditional_t<std::is_signed_v<Index>, int, unsigned int>;
        auto const narrow = static_cast<Narrow>(index);
        return static_cast<Index>(narrow) == index ? narrow : static_cast<Narrow>(-1);
    }

    int lastIndex() const noexcept { return isEmpty() ? 0 : length() - 1; }

    // Replace the text by one that does not lie inside this string's own characters.
    void construct(TCodeUnit const *text, int count);
    void constructFromUtf8(char const *utf8, int count);

    bool inSelf(void const *address) const noexcept;
    TStringCore &appendFromSelf(int position, int count);
    TStringCore &assignFromSelf(int position, int count);
    TStringCore &assignRepeated(TCodeUnit const *units, int count, int times);

    int compareUnits(TCodeUnit const *text, int count) const noexcept;

    vansys::detail::StringStorage m_storage;
};

/// What the string itself throws. It holds one message and is laid out like a `TStringCore`. It derives from
/// nothing and is caught by this type only. Copying it never throws.
class VANSYS_API TStringCore::Exception
{
public:
    explicit Exception(TStringCore const &message) noexcept : m_message(message) {}
    explicit Exception(TStringCore &&message) noexcept : m_message(std::move(message)) {}

    /// A copy on the heap, which the caller owns.
    Exception *Clone() const;

    /// Throws a copy of this object.
    [[noreturn]] void Throw() const;

    /// The message.
    TStringCore GetConcatenatedMessages() const noexcept { return m_message; }

    /// The message.
    TStringCore CollateMessagesForLog() const noexcept { return m_message; }

private:
    TStringCore m_message;
};

static_assert(sizeof(TStringCore) == 32 && sizeof(TStringCore::Exception) == 32);

/// `stream << text` would print an address. Write `stream << text.toStdString()`.
template <class Character, class Traits>
std::basic_ostream<Character, Traits> &operator<<(std::basic_ostream<Character, Traits> &,
                                                  TStringCore const &) = delete;

/// Prints the text, quoted and with escapes, where GoogleTest shows a value.
VANSYS_API void PrintTo(TStringCore const &text, std::ostream *out);

/// Consistent with `==`: the hash covers every unit of the text.
template <>
struct VANSYS_API std::hash<TStringCore>
{
    std::size_t operator()(TStringCore const &text) const noexcept;
};

#include "vansys/detail/StringComparison.h"
