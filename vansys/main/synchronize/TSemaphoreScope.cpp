#include "vansys/TSemaphoreScope.h"

#include <utility>

TSemaphoreScope::TSemaphoreScope(RefCntPtr<TSemaphore, RefCntObject> semaphore)
{
    if (TSemaphore *const target = semaphore.operator->())
    {
        target->Acquire();
        m_semaphore = std::move(semaphore);
    }
}

TSemaphoreScope::TSemaphoreScope(RefCntPtr<TSemaphore, RefCntObject> semaphore, unsigned int timeoutMs)
{
    TSemaphore *const target = semaphore.operator->();
    if (target && target->TryAcquire(timeoutMs))
        m_semaphore = std::move(semaphore);
}

TSemaphoreScope::~TSemaphoreScope()
{
    try
    {
        Reset();
    }
    catch (...)
    {
        // Somebody has filled the semaphore to its limit with units of their own. There is no one to tell.
    }
}

void TSemaphoreScope::Reset()
{
    if (m_semaphore)
    {
        m_semaphore->Release();
        m_semaphore.reset();
    }
}
