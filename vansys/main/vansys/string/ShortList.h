/// @file
/// A list for what an operation has to remember while it works.
#pragma once

#include "vansys/TStringCore.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

namespace vansys::detail
{

/// Holds `InlineCount` values without touching the heap.
template <class Value, std::size_t InlineCount>
class ShortList
{
    static_assert(std::is_trivially_copyable_v<Value>, "values are moved as bytes");

public:
    // Not `= default`, which would let `ShortList{}` fill the room with zeros.
    ShortList() noexcept {}

    ShortList(ShortList const &) = delete;
    ShortList &operator=(ShortList const &) = delete;

    ~ShortList()
    {
        if (m_values != m_room)
            std::free(m_values);
    }

    std::size_t size() const noexcept { return m_size; }

    Value const &operator[](std::size_t index) const noexcept { return m_values[index]; }

    Value const *begin() const noexcept { return m_values; }
    Value const *end() const noexcept { return m_values + m_size; }

    /// Throws `TStringCore::Exception` "Out of memory".
    void Append(Value value)
    {
        if (m_size == m_capacity)
            Grow();
        m_values[m_size++] = value;
    }

private:
    void Grow()
    {
        bool const isInline = m_values == m_room;
        void *const grown = m_capacity <= std::numeric_limits<std::size_t>::max() / sizeof(Value) / 2
                                ? std::realloc(isInline ? nullptr : m_values, m_capacity * 2 * sizeof(Value))
                                : nullptr;
        if (!grown)
            throw TStringCore::Exception("Out of memory");
        if (isInline)
            std::memcpy(grown, m_room, sizeof m_room);
        m_values = static_cast<Value *>(grown);
        m_capacity *= 2;
    }

    Value m_room[InlineCount];
    Value *m_values = m_room;
    std::size_t m_size = 0;
    std::size_t m_capacity = InlineCount;
};

} // namespace vansys::detail
