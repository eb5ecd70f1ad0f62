#include "vansys/TReadWriteLock.h"

#include "main/platform/SystemHeader.h"

#include VANSYS_SYSTEM_HEADER(synchronize, ReadWriteLockBackEnd)

class TReadWriteLock::Implementation final : public vansys::detail::ReadWriteLockBackEnd
{
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
