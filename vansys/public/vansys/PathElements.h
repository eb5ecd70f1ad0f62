/// @file
/// PathElements: the elements of a path, as views.
#pragma once

#include "vansys/Export.h"
#include "vansys/TPathCore.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

/// The elements of a path in either direction, the same as those of `TPathCore::iterator`:
///
///     for (std::u16string_view const element : path.Elements())
///         ...
///
/// Nothing is allocated, and nothing throws. The text is searched for separators once, 64 units at a time as
/// they are reached; a step to the next element, or back to the one before, takes a few instructions.
///
/// It and its iterators refer to the path's text, and so do the views: they are valid until the path is
/// changed or destroyed. The iterators do not refer to this object.
class VANSYS_API PathElements
{
public:
    class iterator;

    using const_iterator = iterator;
    using value_type = std::u16string_view;

    explicit PathElements(TPathCore const &path) noexcept;
    explicit PathElements(TPathCore &&path) = delete; // the views would outlive the path

    inline iterator begin() const noexcept;
    inline iterator end() const noexcept;
    inline std::reverse_iterator<iterator> rbegin() const noexcept;
    inline std::reverse_iterator<iterator> rend() const noexcept;

    bool empty() const noexcept { return m_text.length == 0; }

private:
    static constexpr int WindowLength = 64;

    struct Text
    {
        TCodeUnit const *units = nullptr;
        int length = 0;

        int lastBase() const noexcept { return length & ~(WindowLength - 1); }
    };

    /// Where elements begin and end among 64 units, a bit for each: for the first unit of an element, and for
    /// the unit behind its last, or the end of the text. The lowest bits stand for the unit at the base,
    /// which is a multiple of 64.
    struct Edges
    {
        std::uint64_t begins = 0;
        std::uint64_t ends = 0;
    };

    // With values, not references, to and fro: so loops keep what they work on in registers.
    static Edges edgesAt(Text text, int base) noexcept;

    Text m_text;
    Edges m_first;
};

/// As any iterator, it is not to be moved past the ends.
class PathElements::iterator
{
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = std::u16string_view;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = std::u16string_view;

    iterator() noexcept = default;

    std::u16string_view operator*() const noexcept
    {
        int const begin = m_begins.position();
        return {reinterpret_cast<char16_t const *>(m_text.units) + begin,
                static_cast<std::size_t>(m_ends.position() - begin)};
    }

    iterator &operator++() noexcept
    {
        stepForward(m_begins, &Edges::begins);
        stepForward(m_ends, &Edges::ends);
        return *this;
    }

    iterator operator++(int) noexcept
    {
        iterator before = *this;
        ++*this;
        return before;
    }

    iterator &operator--() noexcept
    {
        stepBack(m_begins, &Edges::begins);
        stepBack(m_ends, &Edges::ends);
        return *this;
    }

    iterator operator--(int) noexcept
    {
        iterator before = *this;
        --*this;
        return before;
    }

    /// Of iterators over the same text.
    friend bool operator==(iterator const &a, iterator const &b) noexcept
    {
        return a.m_begins.rest == b.m_begins.rest && a.m_begins.base == b.m_begins.base;
    }

    friend bool operator!=(iterator const &a, iterator const &b) noexcept { return !(a == b); }

private:
    friend class PathElements;

    /// The begins or the ends from a base on, of which some have been passed.
    struct Marks
    {
        int base = 0;
        std::uint64_t all = 0;
        std::uint64_t rest = 0; ///< from the current one on; none behind the last of the text

        int position() const noexcept { return base + __builtin_ctzll(rest); }
    };

    enum class Place
    {
        First,
        End
    };

    iterator(Text text, int base, Edges edges, Place place) noexcept
        : m_text(text),
          m_begins{base, edges.begins, place == Place::First ? edges.begins : 0},
          m_ends{base, edges.ends, place == Place::First ? edges.ends : 0}
    {
    }

    void stepForward(Marks &marks, std::uint64_t Edges::*kind) const noexcept
    {
        marks.rest &= marks.rest - 1;
        if (__builtin_expect(marks.rest == 0, 0)) // it is once for each walk, or for 64 units
            enterNextWindows(marks, kind);
    }

    /// Until there is a current one: a long name has windows to itself.
    void enterNextWindows(Marks &marks, std::uint64_t Edges::*kind) const noexcept
    {
        while (marks.rest == 0 && marks.base != m_text.lastBase())
        {
            marks.base += WindowLength;
            marks.all = marks.rest = edgesAt(m_text, marks.base).*kind;
        }
    }

    void stepBack(Marks &marks, std::uint64_t Edges::*kind) const noexcept
    {
        while (marks.all == marks.rest && marks.base != 0)
        {
            marks.base -= WindowLength;
            marks.all = edgesAt(m_text, marks.base).*kind;
            marks.rest = 0;
        }
        marks.rest |= std::uint64_t{1} << (WindowLength - 1 - __builtin_clzll(marks.all & ~marks.rest));
    }

    Text m_text;
    Marks m_begins;
    Marks m_ends;
};

PathElements::iterator PathElements::begin() const noexcept
{
    iterator first(m_text, 0, m_first, iterator::Place::First);
    first.enterNextWindows(first.m_ends, &Edges::ends); // the first name may be long
    return first;
}

PathElements::iterator PathElements::end() const noexcept
{
    int const base = m_text.lastBase();
    Edges const last = base == 0 ? m_first : edgesAt(m_text, base);
    return iterator(m_text, base, last, iterator::Place::End);
}

std::reverse_iterator<PathElements::iterator> PathElements::rbegin() const noexcept
{
    return std::reverse_iterator(end());
}

std::reverse_iterator<PathElements::iterator> PathElements::rend() const noexcept
{
    return std::reverse_iterator(begin());
}

PathElements TPathCore::Elements() const &noexcept
{
    return PathElements(*this);
}
