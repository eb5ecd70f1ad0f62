#include "vansys/TReadWriteLock.h"

#include "main/platform/CriticalSection.h"
#include "main/synchronize/LockLimits.h"

#include <mutex>

using namespace vansys::detail;

/// A writer stays in the section as long as it holds the lock. A reader is inside only while it counts
/// itself.
class TReadWriteLock::Implementation
{
public:
    Implementation() noexcept { InitializeConditionVariable(&m_cv); }

    void Lock()
    {
        std::unique_lock section(m_section);
        if (m_writerCount == MaxLockCount)
        {
            ReportTooManyWriters();
            return;
        }
        ++m_writerCount;
        try
        {
            WaitForReaders();
        }
        catch (...)
        {
            --m_writerCount;
            throw;
        }
        section.release();
    }

    void Unlock() noexcept
    {
        LockCount const writersLeft = --m_writerCount;
        m_section.unlock();
        if (writersLeft != 0)
            WakeConditionVariable(&m_cv);
    }

    bool TryLock() noexcept
    {
        std::unique_lock section(m_section, std::try_to_lock);
        if (!section || m_readerCount != 0 || m_writerCount == MaxLockCount)
            return false;
        ++m_writerCount;
        section.release();
        return true;
    }

    void LockRead()
    {
        std::lock_guard const section(m_section);
        if (m_readerCount == MaxLockCount)
        {
            ReportTooManyReaders();
            return;
        }
        ++m_readerCount;
    }

    void UnlockRead() noexcept
    {
        std::unique_lock section(m_section);
        if (--m_readerCount != 0)
            return;
        bool const writerWaits = m_writerCount != 0;
        section.unlock();
        if (writerWaits)
            WakeConditionVariable(&m_cv);
    }

    bool TryLockRead() noexcept
    {
        std::unique_lock const section(m_section, std::try_to_lock);
        if (!section || m_readerCount == MaxLockCount)
            return false;
        ++m_readerCount;
        return true;
    }

private:
    /// The section is left while asleep, so readers may come in.
    void WaitForReaders()
    {
        while (m_readerCount != 0)
        {
            if (!SleepConditionVariableCS(&m_cv, m_section.native_handle(), INFINITE))
                ThrowLogicException("vansys/main/synchronize/TLocks", 165,
                                    "SleepConditionVariableCS(&m_cv, mutex.native_handle(), INFINITE)");
        }
    }

    CONDITION_VARIABLE m_cv;
    CriticalSection m_section;
    LockCount m_readerCount = 0;
    LockCount m_writerCount = 0; // writers that hold the lock or wait for readers to leave
};

TReadWriteLock::TReadWriteLock(unsigned int) : m_implementation(new Implementation) {}

TReadWriteLock::~TReadWriteLock()
{
    delete m_implementation;
}

void TReadWriteLock::Lock()
{
    m_implementation->Lock();
}

void TReadWriteLock::Unlock()
{
    m_implementation->Unlock();
}

void TReadWriteLock::LockRead()
{
    m_implementation->LockRead();
}

void TReadWriteLock::UnlockRead()
{
    m_implementation->UnlockRead();
}

bool TReadWriteLock::try_lock()
{
    return m_implementation->TryLock();
}

bool TReadWriteLock::try_lock_shared()
{
    return m_implementation->TryLockRead();
}
