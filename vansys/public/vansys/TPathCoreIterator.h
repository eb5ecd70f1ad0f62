/// @file
/// TPathCore::iterator: the elements of a path, as strings.
#pragma once

#include "vansys/Export.h"
#include "vansys/TPathCore.h"

#include <cstddef>
#include <iterator>
#include <utility>

/// Walks the elements of a path in both directions: the root name, the root directory "/", then each name.
/// Separators in between are passed over, and those at the end:
///
/// | path           | elements                |
/// |----------------|-------------------------|
/// | `C:/a//b`      | `C:`, `/`, `a`, `b`     |
/// | `//srv/share`  | `//srv`, `/`, `share`   |
/// | `C:b/`         | `C:`, `b`               |
/// | `/`            | `/`                     |
/// | the empty path | none                    |
///
/// It refers to the path, and holds the current element as a string. Each step back walks from the beginning;
/// `TPathCore::Elements` has neither of these costs.
///
/// Iterators are equal when they are at the same position of the same object. After the path has been
/// changed, an iterator goes on giving the element that it holds; a step throws `TPathCore::Exception`, or
/// goes on with the new text, as far as the position belongs to it. A default-constructed iterator is at its
/// end, and its beginning.
class VANSYS_API TPathCore::iterator
{
    /// What `->` gives: the element, for the time of the expression.
    class Arrow
    {
    public:
        explicit Arrow(TStringCore element) noexcept : m_element(std::move(element)) {}

        TStringCore const *operator->() const noexcept { return &m_element; }

    private:
        TStringCore m_element;
    };

public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = TStringCore;
    using difference_type = std::ptrdiff_t;
    using pointer = Arrow;
    using reference = TStringCore;

    iterator() noexcept = default;

    /// A copy of the current element; empty at the end.
    TStringCore operator*() const noexcept { return m_element; }
    Arrow operator->() const noexcept { return Arrow(m_element); }

    /// Throws `TPathCore::Exception` "TPathCore::iterator trying to increment beyond end.". Of a path that
    /// has been changed, also "Element position out of range.".
    iterator &operator++() { return *this = next(); }
    iterator operator++(int)
    {
        iterator before = *this;
        ++*this;
        return before;
    }

    /// Throws `TPathCore::Exception` "TPathCore::iterator trying to decrement beyond beginning.". Of a path
    /// that has been changed, also "TPathCore::iterator out of sync in prev.", "Element position out of
    /// range." and "Separator position out of range.".
    iterator &operator--() { return *this = prev(); }
    iterator operator--(int)
    {
        iterator before = *this;
        --*this;
        return before;
    }

    friend bool operator==(iterator const &a, iterator const &b) noexcept
    {
        return a.m_path == b.m_path && a.m_position == b.m_position;
    }

    friend bool operator!=(iterator const &a, iterator const &b) noexcept { return !(a == b); }

private:
    friend class TPathCore;
    friend class vansys::detail::PathAccess;

    iterator(TPathCore const *path, int position);

    TStringCore get() const;
    iterator next() const;
    iterator prev() const;

    TPathCore const *m_path = nullptr; // not owned
    int m_position = 0;                // of the current element in the text; the text's length at the end
    TStringCore m_element;
};
