/// @file
/// The ways in which one thread waits for another at a lock.
#pragma once

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

/// A row for each way, and the locks that the rows use.
class LockRows
{
public:
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
    };

private:
    TRecursiveMutex m_mutex;
    TReadWriteLock m_lock;
    RefCntPtr<TSemaphore, RefCntObject> const m_semaphore = TSemaphore::Construct(1);
};
