/// @file
/// ReadWriteLockBackEnd of Windows: a critical section and a condition variable.
#pragma once

#include "main/platform/CriticalSection.h"
#include "main/platform/Windows.h"
#include "main/synchronize/LockLimits.h"

namespace vansys::detail
{

/// A writer stays in the section as long as it holds the lock. A reader is inside only while it counts
/// itself.
class ReadWriteLockBackEnd
{
public:
    ReadWriteLockBackEnd() noexcept { InitializeConditionVariable(&m_cv); }

    void Lock();
    bool TryLock() noexcept;
    void Unlock() noexcept;
    void LockRead();
    bool TryLockRead() noexcept;
    void UnlockRead() noexcept;

private:
    /// The section is left while asleep, so readers may come in.
    void WaitForReaders();

    CONDITION_VARIABLE m_cv;
    CriticalSection m_section;
    LockCount m_readerCount = 0;
    LockCount m_writerCount = 0; // writers that hold the lock or wait for readers to leave
};

} // namespace vansys::detail
