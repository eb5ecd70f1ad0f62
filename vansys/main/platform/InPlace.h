/// @file
/// InPlace: a member whose class is known to one source file only.
#pragma once

#include <cstddef>
#include <new>
#include <utility>

namespace vansys::detail
{

/// Holds a `T`, in `Size` bytes at most, without being told what it is. For classes that are something else
/// on each system: their header declares `T`, and the source for the system defines it before it creates,
/// uses or destroys the member. Unlike a pointer, this costs no allocation and no detour.
template <class T, std::size_t Size>
class InPlace
{
public:
    template <class... Arguments>
    explicit InPlace(Arguments &&...arguments)
    {
        static_assert(sizeof(T) <= Size && alignof(T) <= alignof(void *), "the header reserves too little");
        new (m_storage) T(std::forward<Arguments>(arguments)...);
    }

    InPlace(InPlace const &) = delete;
    InPlace &operator=(InPlace const &) = delete;

    ~InPlace() { operator->()->~T(); }

    T *operator->() noexcept { return std::launder(reinterpret_cast<T *>(m_storage)); }

private:
    alignas(void *) unsigned char m_storage[Size];
};

} // namespace vansys::detail
