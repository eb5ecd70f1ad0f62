#include "vansys/TSemaphore.h"

#include "vansys/TFormatStringCore.h"
#include "vansys/VantrelException.h"

#include "main/platform/SystemHeader.h"

#include VANSYS_SYSTEM_HEADER(synchronize, SemaphoreBackEnd)

using namespace vansys::detail;

namespace
{

/// The marker in the message is for the error.
void ThrowUnlessDone(SystemError error, char const *message)
{
    if (error != NoError) [[unlikely]]
        throw VantrelException(TFormatStringCore(message).arg(error));
}

class Semaphore final : public TSemaphore
{
public:
    explicit Semaphore(unsigned int count)
    {
        ThrowUnlessDone(m_backEnd.Open(count), "TSemaphore::Construct: error=%1");
    }

    bool TryAcquire() override { return m_backEnd.TryAcquire(0); }

    bool TryAcquire(unsigned int timeoutMs) override
    {
        static_assert(NoTimeout == NoTimeLimit);
        return m_backEnd.TryAcquire(timeoutMs);
    }

    void Acquire() override { ThrowUnlessDone(m_backEnd.Acquire(), "TSemaphore::Acquire: error=%1"); }

    void Release() override { ThrowUnlessDone(m_backEnd.Release(), "TSemaphore::Release: error=%1"); }

private:
    ~Semaphore() override = default;

    SemaphoreBackEnd m_backEnd;
};

} // namespace

TSemaphore::~TSemaphore() = default;

RefCntPtr<TSemaphore, RefCntObject> TSemaphore::Construct(unsigned int count)
{
    return new Semaphore(count);
}
