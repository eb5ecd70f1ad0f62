#include "vansys/TSemaphore.h"

#include "main/platform/Handle.h"
#include "main/platform/Windows.h"
#include "main/synchronize/SemaphoreFailure.h"

using namespace vansys::detail;

namespace
{

class Semaphore_win final : public TSemaphore
{
public:
    explicit Semaphore_win(unsigned int count)
        : m_handle(CreateSemaphoreW(nullptr, static_cast<LONG>(count), static_cast<LONG>(MaxSemaphoreCount),
                                    nullptr))
    {
        if (!m_handle)
            ThrowSemaphoreFailure(SemaphoreConstructFailed, GetLastError());
    }

    bool TryAcquire() override { return TryAcquire(0); }

    bool TryAcquire(unsigned int timeoutMs) override
    {
        static_assert(NoTimeout == INFINITE);
        return WaitForSingleObject(m_handle.Get(), timeoutMs) == WAIT_OBJECT_0;
    }

    void Acquire() override
    {
        if (WaitForSingleObject(m_handle.Get(), INFINITE) == WAIT_FAILED)
            ThrowSemaphoreFailure(SemaphoreAcquireFailed, GetLastError());
    }

    void Release() override
    {
        if (!ReleaseSemaphore(m_handle.Get(), 1, nullptr))
            ThrowSemaphoreFailure(SemaphoreReleaseFailed, GetLastError());
    }

private:
    ~Semaphore_win() override = default;

    Handle m_handle;
};

} // namespace

RefCntPtr<TSemaphore, RefCntObject> TSemaphore::Construct(unsigned int count)
{
    return new Semaphore_win(count);
}
