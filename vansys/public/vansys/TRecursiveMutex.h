/// @file
/// TRecursiveMutex: the library's general lock.
#pragma once

#include "vansys/Export.h"
#include "vansys/ThreadSafety.h"

/// A lock that one thread holds at a time, and that this thread may take again while it holds it.
///
/// It fits `std::lock_guard`, `std::unique_lock` and `std::scoped_lock`, and, as code that is written for a
/// `TReadWriteLock` may be given a recursive mutex, `std::shared_lock`; reading is then as exclusive as
/// writing. Prefer a guard to calls of `Lock` and `Unlock`: it unlocks on exceptions too.
///
/// **Order.** What a thread did before `Unlock` is seen by the thread that takes the lock next, from its
/// `Lock` or successful `TryLock` on. Locks and unlocks of one mutex by all threads happen in one order.
///
/// **Owner.** The thread that locked must unlock, once for each time it locked, before it ends. `Unlock` by
/// another thread, or without a `Lock`, breaks the mutex. `Lock` never fails.
///
/// **Fairness.** None: a thread that unlocks and locks again at once may pass by others that wait. A waiting
/// thread watches the lock for a moment and then sleeps. Without contention, `Lock` and `Unlock` stay out of
/// the operating system.
///
/// **Deadlock.** Two mutexes that threads take in different orders, and code that is called with the mutex
/// held and waits for a thread that needs it, wait for ever. That a mutex is recursive hides neither.
///
/// **Lifetime.** Destroy it only when nobody holds it, or waits for it, and every call on it has returned,
/// `Unlock` too. It can be neither copied nor moved.
class VANSYS_CAPABILITY("mutex") VANSYS_API TRecursiveMutex
{
public:
    /// The argument was a spin count and is ignored. Throws `std::bad_alloc`.
    explicit TRecursiveMutex(unsigned int ignored = 0);

    TRecursiveMutex(TRecursiveMutex const &) = delete;
    TRecursiveMutex &operator=(TRecursiveMutex const &) = delete;

    ~TRecursiveMutex();

    /// Waits until no other thread holds the mutex, and takes it.
    void Lock() VANSYS_ACQUIRE();

    /// Takes the mutex, and returns true, unless another thread holds it. Never waits.
    bool TryLock() VANSYS_TRY_ACQUIRE(true);

    /// Undoes one `Lock` or successful `TryLock` of this thread; the last one lets other threads in.
    void Unlock() VANSYS_RELEASE();

    /// The same as `Lock` and `Unlock`.
    void LockRead() VANSYS_ACQUIRE();
    void UnlockRead() VANSYS_RELEASE();

    // The same for the guards of the standard library.
    void lock() VANSYS_ACQUIRE() { Lock(); }
    bool try_lock() VANSYS_TRY_ACQUIRE(true) { return TryLock(); }
    void unlock() VANSYS_RELEASE() { Unlock(); }
    void lock_shared() VANSYS_ACQUIRE() { Lock(); }
    bool try_lock_shared() VANSYS_TRY_ACQUIRE(true) { return TryLock(); }
    void unlock_shared() VANSYS_RELEASE() { Unlock(); }

private:
    class Implementation;

    Implementation *m_implementation; // owned, never null
};
