/// @file
/// TSemaphore: a counting semaphore that its users share.
#pragma once

#include "vansys/Export.h"
#include "vansys/ReferenceCount.h"

/// A number of units, which threads take and give back one at a time; who asks for a unit when there is none
/// waits for one.
///
/// A semaphore has no owner: any thread may release what another acquired. `TSemaphoreScope` releases for
/// you.
///
///     auto const slots = TSemaphore::Construct(4);
///     slots->Acquire();   // at most four threads get past here ...
///     slots->Release();   // ... before this
///
/// **Order.** What a thread did before `Release` is seen by the thread that takes that unit, from the return
/// of its `Acquire` or successful `TryAcquire` on.
///
/// **Fairness.** None: a thread that asks may get a unit before others that wait already. While nobody waits,
/// units are taken and released without the operating system (on Windows, each operation is a call of it).
///
/// **Lifetime.** Counted: hold a `RefCntPtr` while you call it. A thread may still be inside `Release` when
/// the thread that has got its unit goes on, so each of the two needs its own.
class VANSYS_API TSemaphore : public RefCntObject
{
public:
    /// A timeout that never passes.
    static constexpr unsigned int NoTimeout = 0xFFFFFFFF;

    /// A semaphore with `count` units to begin with, held by the pointer alone. It may have up to 2147483647
    /// units; for more, throws `VantrelException` "TSemaphore::Construct: error=CODE", with the error code of
    /// the operating system (on Linux EINVAL, 22).
    static RefCntPtr<TSemaphore, RefCntObject> Construct(unsigned int count);

    TSemaphore(TSemaphore const &) = delete;
    TSemaphore &operator=(TSemaphore const &) = delete;

    /// Takes a unit if there is one, and returns whether it did. Never waits, never throws.
    virtual bool TryAcquire() = 0;

    /// Waits for a unit for the given number of milliseconds at most, and returns whether it took one. Never
    /// throws: a wait that the operating system refuses is false too.
    virtual bool TryAcquire(unsigned int timeoutMs) = 0;

    /// Waits for a unit and takes it. Throws `VantrelException` "TSemaphore::Acquire: error=CODE" when the
    /// operating system refuses to wait (on Linux it never does).
    virtual void Acquire() = 0;

    /// Gives a unit back, or adds a new one. With 2147483647 units in the semaphore, throws
    /// `VantrelException` "TSemaphore::Release: error=CODE" (on Linux EOVERFLOW, 75) and changes nothing.
    virtual void Release() = 0;

protected:
    TSemaphore() noexcept = default;
    ~TSemaphore() override;
};
