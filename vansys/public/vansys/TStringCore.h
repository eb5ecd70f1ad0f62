/// @file
/// TStringCore: the one string type of the library.
#pragma once

#include "vansys/Export.h"
#include "vansys/Forward.h"
#include "vansys/NumberFunctions.h"
#include "vansys/StringFunctions.h"
#include "vansys/TCodeUnit.h"
#include "vansys/Text.h"
#include "vansys/detail/CharacterTypes.h"
#include "vansys/detail/StringIndex.h"
#include "vansys/detail/StringStorage.h"

#include <cstddef>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace vansys::detail
{
class StringAccess;
}

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
/// **Operations** take text as a `TStringCore`, as zero-terminated text of either wide type or UTF-8, or as
/// one unit: that is what a parameter of type `Text` stands for. A null pointer is the empty text there too.
/// Those that also work on raw text are inherited from `StringFunctions`: `findStr`, `findChar`, `findOneOf`,
/// `findOneNotOf`, `compareN` and more.
///
/// **Sets** (`trim(set)`, `removeAnyOf`, `splitOnAny`, `tokenize`...) are sets of code units when they are
/// given as a string or in `TCodeUnit`. In UTF-8 and UTF-32 they are sets of code points: neither half of a
/// surrogate pair matches by itself.
///
/// **Memory.** A string that has moved to the heap stays there when it gets shorter. It becomes inline again
/// when an inline string is assigned to it while its block is shared, when it is moved from, and when it is
/// assigned to by move from an inline string. Growth doubles the capacity; see `EnableConservativeString`.
/// What writes into a copy whose block is shared gets a block of the same capacity, however short the new
/// text is: before raw text is assigned to a copy of a very long string, `clear()` lets go of the block.
///
/// **Failures** are `TStringCore::Exception`, and leave the string as it was:
/// "Out of memory" when the heap gives nothing; "Allocation size less than zero; probable overflow" when the
/// text would pass the largest capacity that an `int` can hold; "Appended string is too long" when
/// zero-terminated narrow text is longer than any `int`, to whichever operation it is given.
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
class VANSYS_API TStringCore : public vansys::StringFunctions, public vansys::NumberFunctions
{
public:
    class Exception;

    /// Text in any of its forms, for the time of a call.
    using Text = vansys::Text;

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

    /// The platform's default code page, as ICU has it: the ANSI code page on Windows, UTF-8 elsewhere.
    /// U+FFFD stands for what the code page does not know. Throws `Exception` "Out of memory".
    static TStringCore fromLocal8Bit(char const *bytes, int count = -1);

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

    /// The text in the platform's default code page; see `fromLocal8Bit`. What the code page lacks becomes
    /// its substitution character. `*complete` receives whether the bytes convert back to this text.
    std::string toLocal8Bit(bool *complete = nullptr) const;

    // Access

    /// The units, followed by a zero unit. Valid until the string is changed or destroyed.
    TCodeUnit const *constData() const noexcept { return m_storage.units(); }
    TCodeUnit const *data() const noexcept { return m_storage.units(); }

    /// The units for writing. Detaches, so it may throw; see the traps above.
    TCodeUnit *data() { return m_storage.writableUnits(); }
    operator TCodeUnit const *() const noexcept { return m_storage.units(); }

    /// A view of the text, zero units included. Valid until the string is changed or destroyed.
    operator std::u16string_view() const noexcept;

    // What the conversion to a pointer would let through, and nobody means. A pointer that is never null
    // makes `if (text)` and `bool b = text` true: write `!text.isEmpty()`. A template, because a conversion
    // to `bool` would go on to a number, or to the unit that `std::u16string` can be assigned from.
    template <class Bool, class = std::enable_if_t<std::is_same_v<Bool, bool>>>
    operator Bool() const = delete;

    // An address outside the text, or a distance between texts. For `text + u'x'`, see `append`.
    template <class Other>
    friend void operator+(TStringCore const &, Other const &) = delete;
    template <class Other>
    friend void operator+(Other const &, TStringCore const &) = delete;
    template <class Other>
    friend void operator-(TStringCore const &, Other const &) = delete;
    template <class Other>
    friend void operator-(Other const &, TStringCore const &) = delete;

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
        return (*this)[vansys::detail::NarrowIndex(index)];
    }

    template <class Index, class = vansys::detail::EnableIfLongIndex<Index>>
    reference operator[](Index index)
    {
        return (*this)[vansys::detail::NarrowIndex(index)];
    }

    // Length and capacity

    using StringFunctions::length;
    using StringFunctions::lengthInBytes;
    using StringFunctions::lengthInCodePoints;

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

    // Appending. Amortised constant time for each unit.

    TStringCore &append(TStringCore const &other) { return append(other.constData(), other.length()); }

    TStringCore &append(TCodeUnit const *text, int count = -1);
    TStringCore &append(TWideTwin const *text, int count = -1);

    /// Decodes as `fromUtf8` does. The string grows to hold `count` more units before it is decoded.
    TStringCore &append(char const *utf8, int count = -1);

    TStringCore &append(TCodeUnit unit)
    {
        m_storage.append(unit);
        return *this;
    }

    TStringCore &append(TWideTwin codePoint);

    /// Appends the unit of the same value (0 to 255), not decoded.
    TStringCore &append(char byte) { return append(widen(byte)); }

    template <class Added>
    TStringCore &operator+=(Added const &added)
    {
        return append(added);
    }

    void push_back(TCodeUnit unit) { m_storage.append(unit); }
    void push_back(TWideTwin codePoint) { append(codePoint); }
    void push_back(char byte) { append(byte); }

    // Byte-order mark

    /// Whether the first unit is U+FEFF.
    bool hasBOM() const noexcept { return front() == ByteOrderMark; }

    /// Inserts U+FEFF at the front, whether there is one already or not.
    void prependBOM();

    /// Removes the first unit when it is U+FEFF.
    void removeBOM();

    // Comparison. The operators, which respect case, are in TStringCoreOperators.h.

    using StringFunctions::compare;

    /// -1, 0 or 1 as this text comes before, equals or follows the other: by (folded) code unit, as unsigned
    /// 16-bit values, over the full length, the shorter text first.
    int compare(Text const &other, CaseSensitivity sensitivity = CaseSensitive) const noexcept;

    // Search. Positions are those of the first unit of a match; -1 when there is none. From either end and
    // with either sensitivity, the time is in proportion to the units passed over and those of the text
    // sought, at worst; so is that of what is made of searches: `count`, `replace`, `removeAll`, `split`,
    // `section`.

    /// The first match at or after `start`; a negative `start` is 0. An empty text is found at `start`, when
    /// that lies in 0 to `length()`.
    int indexOf(Text const &text, int start = 0, CaseSensitivity sensitivity = CaseSensitive) const noexcept;
    int indexOf(Text const &text, CaseSensitivity sensitivity) const noexcept
    {
        return indexOf(text, 0, sensitivity);
    }

    /// The last match at or before `start`; from the end when `start` is negative. An empty text is found at
    /// `start`, when that lies in 0 to `length()`, and at the end for a negative `start`.
    int lastIndexOf(Text const &text, int start = -1,
                    CaseSensitivity sensitivity = CaseSensitive) const noexcept;
    int lastIndexOf(Text const &text, CaseSensitivity sensitivity) const noexcept
    {
        return lastIndexOf(text, -1, sensitivity);
    }

    /// Every text contains the empty text, and starts and ends with it.
    bool contains(Text const &text, CaseSensitivity sensitivity = CaseSensitive) const noexcept
    {
        return indexOf(text, 0, sensitivity) >= 0;
    }

    bool startsWith(Text const &text, CaseSensitivity sensitivity = CaseSensitive) const noexcept;
    bool endsWith(Text const &text, CaseSensitivity sensitivity = CaseSensitive) const noexcept;

    /// How many matches there are that do not overlap; none of an empty text.
    int count(Text const &text, CaseSensitivity sensitivity = CaseSensitive) const noexcept;

    // Editing. Positions outside the text clamp to its ends; a negative count means "to the end". Each of
    // these throws as `append` does, leaves the text as it was then, and works when the argument is part of
    // this text.

    TStringCore &insert(int position, Text const &text);
    TStringCore &prepend(Text const &text) { return insert(0, text); }
    TStringCore &push_front(Text const &text) { return insert(0, text); }

    TStringCore &removeAt(int position, int count = 1);

    /// Removes every match, from left to right.
    TStringCore &removeAll(Text const &text, CaseSensitivity sensitivity = CaseSensitive);

    /// Removes every member of the set at or after `start`.
    TStringCore &removeAnyOf(Text const &set, int start = 0);

    /// Replaces `count` units from `position` on.
    TStringCore &replace(int position, int count, Text const &text);

    /// Replaces every match, from left to right; what has been put in is not searched. An empty `before`
    /// matches nothing.
    TStringCore &replace(Text const &before, Text const &after, CaseSensitivity sensitivity = CaseSensitive)
    {
        replaceCount(before, after, sensitivity);
        return *this;
    }

    /// The same for units, which would be taken for a position and a count as well.
    template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
    TStringCore &replace(Character before, Character after, CaseSensitivity sensitivity)
    {
        return replace(Text(before), Text(after), sensitivity);
    }

    /// `replace`, and how many matches there were.
    int replaceCount(Text const &before, Text const &after, CaseSensitivity sensitivity = CaseSensitive);

    /// Replaces every member of the set at or after `start` by `unit`.
    TStringCore &replaceAnyOf(Text const &set, TCodeUnit unit, int start = 0);

    /// Keeps the first `length` units; none when it is negative. Does nothing when the text is shorter.
    void truncate(int length);

    /// Keeps what comes before the first zero unit.
    void truncateAtFirstNull();

    /// Removes the last `count` units; all when there are fewer. Does nothing when it is not positive.
    void chop(int count);

    /// Reverses the order of the code units. Surrogate pairs come out reversed too.
    TStringCore &reverse();
    TStringCore reversed() const;

    /// The text `times` times in a row; empty when that is not positive.
    TStringCore repeated(int times) const;

    // Parts of the text, as new strings. Positions clamp; a negative count means "to the end".

    TStringCore left(int count) const;
    TStringCore right(int count) const;
    TStringCore mid(int position, int count = -1) const;

    /// What the text begins with that is in the set, or that is not.
    TStringCore spanIncluding(Text const &set) const;
    TStringCore spanExcluding(Text const &set) const;

    using StringFunctions::section;

    /// Cuts the text at every separator, and gives the sections from `first` to `last` with what lies between
    /// them. Sections count from 0; negative numbers count from the end, -1 being the last. Empty when the
    /// text or the separator is empty, when `first` or `last` is no section, and when `last` comes before
    /// `first`.
    TStringCore section(Text const &separator, int first, int last = -1,
                        SectionFlags flags = SectionDefault) const;

    /// The next token at or after `position`, which then moves behind the separator that ended it, or becomes
    /// -1 where the text ended it. With `SkipEmptyParts` leading separators are skipped, and when nothing
    /// follows them the token is empty and `position` -1. To be called until `position` is negative. Empty,
    /// with `position` left alone, when the separators are null or `position` is negative.
    TStringCore tokenize(Text const &separators, int &position,
                         SplitBehavior behavior = SkipEmptyParts) const;

    using StringFunctions::split;

    /// The parts between the separators. No part at all when the separator is empty; one empty part when the
    /// text is empty and empty parts are kept.
    /// Throws `std::bad_alloc` when it is the vector that gets no memory.
    std::vector<TStringCore> split(Text const &separator, SplitBehavior behavior = KeepEmptyParts,
                                   CaseSensitivity sensitivity = CaseSensitive) const;

    using StringFunctions::splitOnAny;

    /// `split`, with each member of the set being a separator.
    std::vector<TStringCore> splitOnAny(Text const &set, SplitBehavior behavior = KeepEmptyParts) const;

    /// The parts with the separator between them.
    static TStringCore join(std::vector<TStringCore> const &parts, Text const &separator);

    // Padding. A negative width counts as 0. Text that is longer than the width is cut to its first `width`
    // units when `truncate` is set, and left as it is otherwise.

    /// The text, and `fill` behind it up to the width.
    TStringCore leftJustified(int width, TCodeUnit fill = u' ', bool truncate = false) const;

    /// `fill` up to the width, and the text behind it.
    TStringCore rightJustified(int width, TCodeUnit fill = u' ', bool truncate = false) const;

    // Case, by the full mappings of ICU's default locale, which may change the length

    TStringCore toLower() const;
    TStringCore toUpper() const;

    // White space (`TCType::isSpace`), or the members of a set, at the ends

    TStringCore &trim();
    TStringCore &trimLeft();
    TStringCore &trimRight();
    TStringCore &trim(Text const &set);
    TStringCore &trimLeft(Text const &set);
    TStringCore &trimRight(Text const &set);
    TStringCore trimmed() const;

    // Line ends

    using StringFunctions::dosToUnix;

    /// Makes CR LF, LF CR, and each run of CRs one LF; every other LF stays.
    TStringCore &dosToUnix();

    /// Makes CR LF of every line end, as `dosToUnix` reads them. CR LF stays, so doing it twice changes
    /// nothing.
    TStringCore &unixToDos();

    /// The same as `unixToDos` on every platform: "native" is the form of Windows in this library.
    TStringCore &toNativeLineEndings() { return unixToDos(); }

    // Numbers to text: see also `number` and `pointer` in NumberFunctions.h.

    /// Becomes what `number` gives, in the memory that the string has.
    TStringCore &setNum(long long value, int base = 10);
    TStringCore &setNum(unsigned long long value, int base = 10);
    TStringCore &setNum(double value, char format = 'g', int precision = 6, bool tidy = false);

    template <class Integer, class = std::enable_if_t<std::is_integral_v<Integer>>>
    TStringCore &setNum(Integer value, int base = 10)
    {
        using Widest = std::conditional_t<std::is_signed_v<Integer>, long long, unsigned long long>;
        return setNum(static_cast<Widest>(value), base);
    }

    // Text to numbers
    //
    // `*ok` receives whether the whole text is a number in the range of the type. A number out of range gives
    // the nearest value of the type; what is no number gives 0. A number is an optional sign, in base 16 an
    // optional "0x" or "0X", and ASCII digits; no blanks. Base 0 reads a leading "0x" or "0X" as base 16,
    // another leading "0" as base 8, and the rest, which is also what begins with a sign, as base 10.
    //
    // Throws `Exception` "TStringCore::parseInteger: base out of range." unless the base is 2 to 36, or 0
    // with a text of two or more units. A text that is empty or begins with a zero unit gives 0 before the
    // base is looked at.

    short toShort(bool *ok = nullptr, int base = 10) const;
    unsigned short toUShort(bool *ok = nullptr, int base = 10) const;
    int toInt(bool *ok = nullptr, int base = 10) const;
    unsigned int toUInt(bool *ok = nullptr, int base = 10) const;
    long toLong(bool *ok = nullptr, int base = 10) const;
    unsigned long toULong(bool *ok = nullptr, int base = 10) const;
    long long toLongLong(bool *ok = nullptr, int base = 10) const;
    unsigned long long toULongLong(bool *ok = nullptr, int base = 10) const;

    /// The nearest value, ties to even, of a text as `leftDoubleLength` measures it, however long it is.
    /// Overflow gives an infinity with `*ok` false, underflow the nearest value with `*ok` true; what is no
    /// number gives 0 with `*ok` false.
    float toFloat(bool *ok = nullptr) const;
    double toDouble(bool *ok = nullptr) const;

    using NumberFunctions::leftDoubleLength;
    using NumberFunctions::leftIntegerLength;

    /// How many leading units form an integer, or a floating-point number.
    int leftIntegerLength(int base = 10) const { return leftIntegerLength(constData(), length(), base); }
    int leftDoubleLength() const { return leftDoubleLength(constData(), length()); }

    // Growth

    /// Switches the whole process to a growth rule that wastes less: capacities step through full and
    /// three-quarter powers of two. To be called once at start-up, before other threads use strings; there is
    /// no way back.
    static void EnableConservativeString() noexcept;

    static bool IsConservativeString() noexcept;

private:
    friend class vansys::detail::StringAccess;

    explicit TStringCore(vansys::detail::StringStorage &&storage) noexcept : m_storage(std::move(storage)) {}

    static constexpr TCodeUnit ByteOrderMark = 0xFEFF;

    /// `char` is signed on the targets: through `unsigned char`, so that 0xE9 is U+00E9.
    static constexpr TCodeUnit widen(char byte) noexcept { return static_cast<unsigned char>(byte); }

    int lastIndex() const noexcept { return isEmpty() ? 0 : length() - 1; }

    // Replace the text by one that does not lie inside this string's own characters.
    void construct(TCodeUnit const *text, int count);
    void constructFromUtf8(char const *utf8, int count);

    bool inSelf(void const *address) const noexcept;
    TStringCore &appendFromSelf(int position, int count);
    TStringCore &assignFromSelf(int position, int count);
    TStringCore &assignRepeated(TCodeUnit const *units, int count, int times);
    TStringCore &replaceMembers(Text const &set, TCodeUnit const *replacement, int start);

    vansys::detail::StringStorage m_storage;
};

inline vansys::Text::Text(TStringCore const &text) noexcept
    : m_units(text.constData()),
      m_length(text.length())
{
}

static_assert(sizeof(TStringCore) == 32);

#include "vansys/TStringCoreException.h"
#include "vansys/TStringCoreOperators.h"
