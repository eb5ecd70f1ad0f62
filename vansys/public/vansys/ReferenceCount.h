/// @file
/// Intrusive reference counting: objects that carry their count, and the pointer that counts.
///
///     class Cache : public RefCntObject
///     {
///     public:
///         static RefCntPtr<Cache, RefCntObject> Construct() { return new Cache; }
///
///     protected:
///         Cache() = default;
///         ~Cache() override;
///     };
///
/// An object starts with the count 0. The first `RefCntPtr` that takes it makes that 1; whoever brings it
/// back to 0 destroys the object. Any number of objects that are kept alive by each other stay for ever:
/// break such rings.
///
/// **Threads.** Pointers to one object may be copied and destroyed on different threads at the same time; one
/// pointer is used by one thread at a time, as an `int` is. Counting says nothing about the rest of the
/// object.
///
/// **Order.** Taking and giving back references are sequentially consistent. What any holder did with the
/// object before it gave its reference back is seen by the destructor.
#pragma once

#include "vansys/Forward.h"
#include "vansys/ThrowLogicException.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <utility>

/// The count, for a class `T` that derives from it and is the class to destroy: `T` needs no virtual
/// function, and a class derived from `T` none either as long as it adds nothing to destroy. `T` lets this
/// class destroy it: its destructor is public, or this class is its friend. For a class hierarchy use
/// `RefCntObject`.
template <class T>
class RefCntObjectNonVirtualBase
{
public:
    /// Takes a reference; returns the count with it. A reference may be taken on what is seen through a
    /// pointer to const, so counting is not a change of the object.
    int AddReference() const noexcept { return __atomic_add_fetch(&m_count, 1, __ATOMIC_SEQ_CST); }

    /// Gives a reference back; returns the count without it. When that is 0 the object has been destroyed. A
    /// count that was 0 or less before is not guarded against: it goes further below, and nothing is
    /// destroyed.
    int RemoveReference() const
    {
        int const count = RemoveReferenceInternal();
        if (count == 0)
        {
            assert(m_guard == Guard && "not a live counted object, or overwritten");
            delete static_cast<T const *>(this);
        }
        return count;
    }

    /// The count at some moment of the recent past. It tells something only while no other thread holds the
    /// object, and orders nothing.
    int UseCount() const noexcept { return __atomic_load_n(&m_count, __ATOMIC_RELAXED); }

protected:
    RefCntObjectNonVirtualBase() noexcept = default;

    /// A copy is an object of its own, which nobody holds yet.
    RefCntObjectNonVirtualBase(RefCntObjectNonVirtualBase const &) noexcept {}

    /// Assigning changes what an object says, not who holds it.
    RefCntObjectNonVirtualBase &operator=(RefCntObjectNonVirtualBase const &) noexcept { return *this; }

    /// Protected: a counted object is destroyed by its count only.
    ~RefCntObjectNonVirtualBase() = default;

    /// Gives a reference back and returns the count without it. Never destroys the object, not even at 0.
    int RemoveReferenceInternal() const noexcept { return __atomic_sub_fetch(&m_count, 1, __ATOMIC_SEQ_CST); }

private:
    /// For the time before another thread can hold the object: no read-modify-write, and no ordering.
    void SetRefCountToOne() const noexcept { __atomic_store_n(&m_count, 1, __ATOMIC_RELAXED); }

    static constexpr std::uint32_t Guard = 0xC466E877;

    // A plain integer that only atomic functions touch, so that the layout is that of two words, for
    // debuggers and dumps as well.
    mutable std::int32_t m_count = 0;

    // Marks a live counted object. Checked before destruction by builds with assertions; part of every build.
    std::uint32_t m_guard = Guard;
};

/// The count for class hierarchies: an object is destroyed as what it is, through the virtual destructor.
/// Derived classes make their own destructors protected or private.
class VANSYS_API RefCntObject : public RefCntObjectNonVirtualBase<RefCntObject>
{
public:
    RefCntObject() noexcept = default;

    /// As in the base: counts are neither copied nor assigned.
    RefCntObject(RefCntObject const &) noexcept = default;
    RefCntObject &operator=(RefCntObject const &) noexcept = default;

    /// As in the base.
    int RemoveReference() const { return RefCntObjectNonVirtualBase::RemoveReference(); }

protected:
    virtual ~RefCntObject();

private:
    friend class RefCntObjectNonVirtualBase<RefCntObject>;
};

/// A pointer that holds one reference on the object it points at, or is null. `Counted` is the base class of
/// `T` that counts: `RefCntObject`, or `RefCntObjectNonVirtualBase` of some class.
///
/// Costs what counting costs: it is as large as a plain pointer, and moving it does not count. Pass it by
/// value where the callee keeps it.
template <class T, class Counted> // RefCntObject by default: see Forward.h
class RefCntPtr
{
public:
    using element_type = T;

    constexpr RefCntPtr() noexcept = default;
    constexpr RefCntPtr(std::nullptr_t) noexcept {}

    /// Takes a reference, unless the pointer is null. Implicit, as the object brings its count along: any
    /// pointer to it is as good a source as another `RefCntPtr`. But beware of a temporary made from a
    /// pointer to an object that nobody holds yet: it destroys the object.
    RefCntPtr(T *pointer) noexcept : m_ptr(pointer) { AddReference(); }

    RefCntPtr(RefCntPtr const &other) noexcept : m_ptr(other.m_ptr) { AddReference(); }
    RefCntPtr(RefCntPtr &&other) noexcept : m_ptr(std::exchange(other.m_ptr, nullptr)) {}

    /// From a pointer to a derived class, or to non-const.
    template <class U, std::enable_if_t<std::is_convertible_v<U *, T *>, int> = 0>
    RefCntPtr(RefCntPtr<U, Counted> const &other) noexcept : m_ptr(other.m_ptr)
    {
        AddReference();
    }

    template <class U, std::enable_if_t<std::is_convertible_v<U *, T *>, int> = 0>
    RefCntPtr(RefCntPtr<U, Counted> &&other) noexcept : m_ptr(std::exchange(other.m_ptr, nullptr))
    {
    }

    ~RefCntPtr()
    {
        if (m_ptr)
            static_cast<Counted const *>(m_ptr)->RemoveReference();
    }

    /// The reference on the old object is given back last: its destructor finds this pointer changed already,
    /// and assigning from a part of the old object works.
    RefCntPtr &operator=(RefCntPtr other) noexcept
    {
        swap(other);
        return *this;
    }

    /// Lets go of the object and takes the other one, if any.
    void reset(T *pointer = nullptr) noexcept { RefCntPtr(pointer).swap(*this); }

    void swap(RefCntPtr &other) noexcept { std::swap(m_ptr, other.m_ptr); }

    /// The object, or null. Not counted: valid as long as somebody holds the object.
    T *get() const noexcept { return m_ptr; }

    explicit operator bool() const noexcept { return m_ptr != nullptr; }

    /// A null pointer here is the assertion failure "m_ptr" (vansys/public/vansys/ReferenceCount, line 361).
    /// With a hook that returns, `->` then returns null; `*` has no object to name then, and its result must
    /// not be used.
    T *operator->() const { return CheckedPointer(); }
    T &operator*() const { return *CheckedPointer(); }

private:
    template <class, class>
    friend class RefCntPtr;

    void AddReference() const noexcept
    {
        if (m_ptr)
            static_cast<Counted const *>(m_ptr)->AddReference();
    }

    T *CheckedPointer() const
    {
        if (!m_ptr)
            ThrowLogicException("vansys/public/vansys/ReferenceCount", 361, "m_ptr");
        return m_ptr;
    }

    T *m_ptr = nullptr;
};

template <class T, class Counted>
void swap(RefCntPtr<T, Counted> &left, RefCntPtr<T, Counted> &right) noexcept
{
    left.swap(right);
}

// Pointers are compared by address. With a plain pointer, compare `get()`: a temporary `RefCntPtr` would
// destroy an object that nobody holds.

template <class T, class U, class Counted>
bool operator==(RefCntPtr<T, Counted> const &left, RefCntPtr<U, Counted> const &right) noexcept
{
    return left.get() == right.get();
}

template <class T, class U, class Counted>
bool operator!=(RefCntPtr<T, Counted> const &left, RefCntPtr<U, Counted> const &right) noexcept
{
    return !(left == right);
}

/// A strict order, for ordered containers.
template <class T, class Counted>
bool operator<(RefCntPtr<T, Counted> const &left, RefCntPtr<T, Counted> const &right) noexcept
{
    return std::less<T *>()(left.get(), right.get());
}

template <class T, class Counted>
bool operator==(RefCntPtr<T, Counted> const &pointer, std::nullptr_t) noexcept
{
    return !pointer;
}

template <class T, class Counted>
bool operator==(std::nullptr_t, RefCntPtr<T, Counted> const &pointer) noexcept
{
    return !pointer;
}

template <class T, class Counted>
bool operator!=(RefCntPtr<T, Counted> const &pointer, std::nullptr_t) noexcept
{
    return static_cast<bool>(pointer);
}

template <class T, class Counted>
bool operator!=(std::nullptr_t, RefCntPtr<T, Counted> const &pointer) noexcept
{
    return static_cast<bool>(pointer);
}

/// Hashes the address, for unordered containers keyed by `RefCntPtr`.
struct RefCntPtrHash
{
    template <class T, class Counted>
    std::size_t operator()(RefCntPtr<T, Counted> const &pointer) const noexcept
    {
        return std::hash<T *>()(pointer.get());
    }
};
