#include "main/synchronize/ReadWriteLockBackEnd_win.h"

#include <mutex>

namespace vansys::detail
{

void ReadWriteLockBackEnd::Lock()
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

void ReadWriteLockBackEnd::Unlock() noexcept
{
    LockCount const writersLeft = --m_writerCount;
    m_section.unlock();
    if (writersLeft != 0)
        WakeConditionVariable(&m_cv);
}

bool ReadWriteLockBackEnd::TryLock() noexcept
{
    std::unique_lock section(m_section, std::try_to_lock);
    if (!section || m_readerCount != 0 || m_writerCount == MaxLockCount)
        return false;
    ++m_writerCount;
    section.release();
    return true;
}

void ReadWriteLockBackEnd::LockRead()
{
    std::lock_guard const section(m_section);
    if (m_readerCount == MaxLockCount)
    {
        ReportTooManyReaders();
        return;
    }
    ++m_readerCount;
}

void ReadWriteLockBackEnd::UnlockRead() noexcept
{
    std::unique_lock section(m_section);
    if (--m_readerCount != 0)
        return;
    bool const writerWaits = m_writerCount != 0;
    section.unlock();
    if (writerWaits)
        WakeConditionVariable(&m_cv);
}

bool ReadWriteLockBackEnd::TryLockRead() noexcept
{
    std::unique_lock const section(m_section, std::try_to_lock);
    if (!section || m_readerCount == MaxLockCount)
        return false;
    ++m_readerCount;
    return true;
}

void ReadWriteLockBackEnd::WaitForReaders()
{
    while (m_readerCount != 0)
    {
        if (!SleepConditionVariableCS(&m_cv, m_section.native_handle(), INFINITE))
            ThrowLogicException("vansys/main/synchronize/TLocks", 165,
                                "SleepConditionVariableCS(&m_cv, mutex.native_handle(), INFINITE)");
    }
}

} // namespace vansys::detail
