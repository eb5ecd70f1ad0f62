#include "vansys/TRecursiveMutex.h"

#include "main/platform/CriticalSection.h"

class TRecursiveMutex::Implementation
{
public:
    vansys::detail::CriticalSection m_section;
};

TRecursiveMutex::TRecursiveMutex(unsigned int) : m_implementation(new Implementation) {}

TRecursiveMutex::~TRecursiveMutex()
{
    delete m_implementation;
}

void TRecursiveMutex::Lock()
{
    m_implementation->m_section.lock();
}

bool TRecursiveMutex::TryLock()
{
    return m_implementation->m_section.try_lock();
}

void TRecursiveMutex::Unlock()
{
    m_implementation->m_section.unlock();
}

void TRecursiveMutex::LockRead()
{
    m_implementation->m_section.lock();
}

void TRecursiveMutex::UnlockRead()
{
    m_implementation->m_section.unlock();
}
