/// @file
/// The ways in which one thread waits for another.
#pragma once

#include "vansys/TAutoResetEvent.h"
#include "vansys/TEvent.h"
#include "vansys/TReadWriteLock.h"
#include "vansys/TRecursiveMutex.h"
#include "vansys/TSemaphore.h"

#include <functional>
#include <vector>

/// Between `take` and `give`, `pass` on another thread waits.
struct LockRow
{
    char const *name;
    std::function<void()> take;
    std::function<void()> give;
    std::function<void()> pass;
};

/// A row for each way, and what the rows use.
class LockRows
{
public:
    LockRows() { m_automatic.Signal(); }

    std::vector<LockRow> const rows = {
        {"mutex", [this] { m_mutex.Lock(); }, [this] { m_mutex.Unlock(); },
         [this] { m_mutex.Lock(), m_mutex.Unlock(); }},
        {"reader behind writer", [this] { m_lock.Lock(); }, [this] { m_lock.Unlock(); },
         [this] { m_lock.LockRead(), m_lock.UnlockRead(); }},
        {"writer behind writer", [this] { m_lock.Lock(); }, [this] { m_lock.Unlock(); },
         [this] { m_lock.Lock(), m_lock.Unlock(); }},
        {"writer behind reader", [this] { m_lock.LockRead(); }, [this] { m_lock.UnlockRead(); },
         [this] { m_lock.Lock(), m_lock.Unlock(); }},
        {"semaphore", [this] { m_semaphore->Acquire(); }, [this] { m_semaphore->Release(); },
         [this] { m_semaphore->Acquire(), m_semaphore->Release(); }},
        {"semaphore, timed", [this] { m_semaphore->Acquire(); }, [this] { m_semaphore->Release(); },
         [this] { m_semaphore->TryAcquire(TSemaphore::NoTimeout - 1), m_semaphore->Release(); }},
        {"event", [this] { m_event.Reset(); }, [this] { m_event.Signal(); }, [this] { m_event.Wait(); }},
        {"auto-reset event", [this] { m_automatic.Wait(); }, [this] { m_automatic.Signal(); },
         [this] { m_automatic.Wait(), m_automatic.Signal(); }},
    };

private:
    TRecursiveMutex m_mutex;
    TReadWriteLock m_lock;
    RefCntPtr<TSemaphore, RefCntObject> const m_semaphore = TSemaphore::Construct(1);
    TEvent const m_event;
    TAutoResetEvent const m_automatic;
};
