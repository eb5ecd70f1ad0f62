/// @file
/// TReadWriteLock: many readers or one writer.
#pragma once

#include "vansys/Export.h"
#include "vansys/ThreadSafety.h"

/// A lock that any number of threads may hold for reading at a time, or one for writing.
///
/// It fits the guards of the standard library: `std::shared_lock` for readers; `std::lock_guard`,
/// `std::unique_lock` and `std::scoped_lock` for writers. Where most holders write, or hold it for a few
/// instructions only, `TRecursiveMutex` is faster.
///
/// **Order.** What a thread did before it unlocked is seen by those that lock after it: what writers did by
/// all, what readers did by writers.
///
/// **No preference.** A writer that waits for the readers to leave does not keep new ones out: where readers
/// overlap without end it waits for ever. Nor is there an order among those that wait.
///
/// **Nesting**, on one thread, each call with its own unlock:
///
/// | holds | asks for | result |
/// |---|---|---|
/// | read | `LockRead` | taken at once, even while a writer waits |
/// | read | `Lock` | waits for itself for ever: a read lock cannot be upgraded |
/// | write | `Lock` or `LockRead` | taken at once |
/// | write, and read inside it | `Lock` | must not be done: it may wait for itself for ever |
///
/// A read lock that is taken inside a write lock may outlive it: `Lock`, `LockRead`, `Unlock` leaves the
/// thread a reader, and no other writer comes between.
///
/// **Owner.** The thread that locked for writing must unlock, before it ends. Read locks have no owner:
/// another thread may unlock one. An unlock without its lock breaks the lock.
///
/// **Limits.** There may be 65534 read locks at a time, and 65534 write locks held (nested) or waited for.
/// One more is an assertion failure (`ThrowLogicException`, file vansys/main/synchronize/TLocks):
///
///     "m_readerCount < std::numeric_limits<decltype(m_readerCount)>::max()", line 253, from LockRead
///     "m_writerCount < std::numeric_limits<decltype(m_writerCount)>::max()", line 232, from Lock
///
/// The call that fails takes nothing, and nothing is to be unlocked for it; that also holds when the
/// assertion hook returns, and the call with it. The hook may run inside the lock: it must not wait for a
/// thread that uses it.
///
/// **Deadlock.** As with every lock: two that threads take in different orders, and code that is called with
/// the lock held and waits for a thread that needs it, wait for ever.
///
/// **Lifetime.** Destroy it only when nobody holds it, or waits for it, and every call on it has returned,
/// the unlocks too. It can be neither copied nor moved.
class VANSYS_CAPABILITY("mutex") VANSYS_API TReadWriteLock
{
public:
    /// The argument was a spin count and is ignored. Throws `std::bad_alloc`.
    explicit TReadWriteLock(unsigned int ignored = 0);

    TReadWriteLock(TReadWriteLock const &) = delete;
    TReadWriteLock &operator=(TReadWriteLock const &) = delete;

    ~TReadWriteLock();

    /// Waits until there is neither reader nor writer, and takes the lock for writing.
    void Lock() VANSYS_ACQUIRE();

    /// Undoes one `Lock` of this thread; the last one lets others in.
    void Unlock() VANSYS_RELEASE();

    /// Waits until no other thread holds the lock for writing, and takes it for reading.
    void LockRead() VANSYS_ACQUIRE_SHARED();

    /// Undoes one `LockRead`. The last reader to leave lets a writer in.
    void UnlockRead() VANSYS_RELEASE_SHARED();

    /// As `Lock`, where that would not have to wait and the limit is not reached; returns false elsewhere.
    /// Never fails an assertion. May return false for no reason, when another thread is just locking or
    /// unlocking.
    bool try_lock() VANSYS_TRY_ACQUIRE(true);

    /// The same for `LockRead`.
    bool try_lock_shared() VANSYS_TRY_ACQUIRE_SHARED(true);

    // The rest for the guards of the standard library.
    void lock() VANSYS_ACQUIRE() { Lock(); }
    void unlock() VANSYS_RELEASE() { Unlock(); }
    void lock_shared() VANSYS_ACQUIRE_SHARED() { LockRead(); }
    void unlock_shared() VANSYS_RELEASE_SHARED() { UnlockRead(); }

private:
    class Implementation;

    Implementation *m_implementation; // owned, never null
};
