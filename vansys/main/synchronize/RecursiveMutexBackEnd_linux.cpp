#include "main/synchronize/RecursiveMutexBackEnd_linux.h"

#include "main/platform/SpinWait.h"

namespace vansys::detail
{

void RecursiveMutexBackEnd::WaitAndTake() noexcept
{
    // Looks before it tries, as trying takes the word away from the thread that is going to unlock.
    auto const tryTake = [this] { return m_state.load(std::memory_order_relaxed) == Free && TryTake(); };
    if (!SpinUntil(tryTake))
    {
        while (m_state.exchange(Held | WithSleepers, std::memory_order_acquire) & Held)
            FutexWait(m_state, Held | WithSleepers);
    }
    SetOwner(CurrentThreadIdentity());
}

} // namespace vansys::detail
