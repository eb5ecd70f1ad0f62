/// @file
/// TSemaphoreScope: holds one unit of a semaphore.
#pragma once

#include "vansys/Export.h"
#include "vansys/ReferenceCount.h"
#include "vansys/TSemaphore.h"

/// Takes a unit of a semaphore, and releases it when the scope goes.
///
/// A scope is counted itself, so one acquisition can be handed on, and is released when its last holder lets
/// go:
///
///     RefCntPtr<TSemaphoreScope, RefCntObject> const scope = new TSemaphoreScope(slots);
///
/// Holders may be on different threads. `Reset` and the other operations of one scope are for one thread at a
/// time.
class VANSYS_API TSemaphoreScope : public RefCntObject
{
public:
    /// Waits for a unit, as `TSemaphore::Acquire`, and passes its exceptions on. A null pointer is the
    /// assertion failure "m_ptr" of `RefCntPtr`; where the hook returns, the scope holds nothing.
    explicit TSemaphoreScope(RefCntPtr<TSemaphore, RefCntObject> semaphore);

    /// Waits for `timeoutMs` milliseconds at most, as `TSemaphore::TryAcquire`: `IsAcquired` tells the
    /// outcome. Null is treated as above.
    TSemaphoreScope(RefCntPtr<TSemaphore, RefCntObject> semaphore, unsigned int timeoutMs);

    /// A copy would release the same unit a second time.
    TSemaphoreScope(TSemaphoreScope const &) = delete;
    TSemaphoreScope &operator=(TSemaphoreScope const &) = delete;

    /// Whether the scope holds a unit.
    bool IsAcquired() const noexcept { return static_cast<bool>(m_semaphore); }

    /// Releases the unit, if the scope holds one. When `TSemaphore::Release` throws, the scope goes on
    /// holding it.
    void Reset();

private:
    /// As `Reset`, but does not throw: a unit that the semaphore refuses to take back is lost.
    ~TSemaphoreScope() override;

    RefCntPtr<TSemaphore, RefCntObject> m_semaphore; // null when no unit is held
};
