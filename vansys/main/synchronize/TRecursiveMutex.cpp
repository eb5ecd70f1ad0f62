#include "vansys/TRecursiveMutex.h"

#include "main/platform/SystemHeader.h"

#include VANSYS_SYSTEM_HEADER(synchronize, RecursiveMutexBackEnd)

class TRecursiveMutex::Implementation final : public vansys::detail::RecursiveMutexBackEnd
{
};

TRecursiveMutex::TRecursiveMutex(unsigned int) : m_implementation(new Implementation) {}

TRecursiveMutex::~TRecursiveMutex()
{
    delete m_implementation;
}

void TRecursiveMutex::Lock()
{
    m_implementation->Lock();
}

bool TRecursiveMutex::TryLock()
{
    return m_implementation->TryLock();
}

void TRecursiveMutex::Unlock()
{
    m_implementation->Unlock();
}

void TRecursiveMutex::LockRead()
{
    m_implementation->Lock();
}

void TRecursiveMutex::UnlockRead()
{
    m_implementation->Unlock();
}
