#include "vansys/TSemaphore.h"

#include "main/platform/Atomic.h"
#include "main/platform/Clock.h"
#include "main/platform/Futex.h"
#include "main/synchronize/SemaphoreFailure.h"

#include <cerrno>
#include <chrono>

using namespace vansys::detail;

namespace
{

/// The number of units, and beside it the number of threads that sleep because there were none.
///
/// A thread that is going to sleep first counts itself and then looks for a unit once more; who releases
/// first adds the unit and then looks for sleepers. All four steps are sequentially consistent, so one of the
/// two sees what the other did, and no unit lies beside a thread that sleeps for it.
class Semaphore_linux final : public TSemaphore
{
public:
    explicit Semaphore_linux(unsigned int count) : m_units(count)
    {
        if (count > MaxSemaphoreCount)
            ThrowSemaphoreFailure(SemaphoreConstructFailed, EINVAL);
    }

    bool TryAcquire() override { return TryTake(); }

    bool TryAcquire(unsigned int timeoutMs) override
    {
        if (TryTake())
            return true;
        if (timeoutMs == 0)
            return false;
        if (timeoutMs == NoTimeout)
        {
            SleepAndTake();
            return true;
        }
        return SleepAndTakeUntil(Clock::Now() + std::chrono::milliseconds(timeoutMs));
    }

    void Acquire() override
    {
        if (!TryTake())
            SleepAndTake();
    }

    void Release() override
    {
        std::uint32_t units = m_units.load(std::memory_order_relaxed);
        do
        {
            if (units == MaxSemaphoreCount)
                ThrowSemaphoreFailure(SemaphoreReleaseFailed, EOVERFLOW);
        } while (!m_units.compare_exchange_weak(units, units + 1, std::memory_order_seq_cst,
                                                std::memory_order_relaxed));
        if (m_sleepers.load(std::memory_order_seq_cst) != 0)
            FutexWakeOne(m_units);
    }

private:
    ~Semaphore_linux() override = default;

    bool TryTake() noexcept
    {
        std::uint32_t units = m_units.load(std::memory_order_seq_cst);
        while (units != 0)
        {
            if (m_units.compare_exchange_weak(units, units - 1, std::memory_order_acquire,
                                              std::memory_order_relaxed))
                return true;
        }
        return false;
    }

    void SleepAndTake() noexcept
    {
        m_sleepers.fetch_add(1, std::memory_order_seq_cst);
        while (!TryTake())
            FutexWait(m_units, 0);
        m_sleepers.fetch_sub(1, std::memory_order_relaxed);
    }

    bool SleepAndTakeUntil(Clock::TimePoint deadline) noexcept
    {
        m_sleepers.fetch_add(1, std::memory_order_seq_cst);
        bool taken = TryTake();
        while (!taken && FutexWaitUntil(m_units, 0, deadline))
            taken = TryTake();
        m_sleepers.fetch_sub(1, std::memory_order_relaxed);
        return taken;
    }

    FutexWord m_units;
    Atomic<std::uint32_t> m_sleepers{0};
};

} // namespace

RefCntPtr<TSemaphore, RefCntObject> TSemaphore::Construct(unsigned int count)
{
    return new Semaphore_linux(count);
}
