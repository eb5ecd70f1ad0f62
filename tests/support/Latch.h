/// @file
/// Latch: lets threads begin at one moment.
#pragma once

#include <condition_variable>
#include <mutex>

/// What `std::latch` is. That one loses wake-ups where the standard library has no futex to build it on, as
/// in GCC's for Windows: it looks at the count before it takes the lock under which it then waits.
class Latch
{
public:
    explicit Latch(int count) : m_count(count) {}

    void CountDown()
    {
        std::lock_guard const lock(m_mutex);
        if (--m_count == 0)
            m_isOpen.notify_all();
    }

    void Wait()
    {
        std::unique_lock lock(m_mutex);
        m_isOpen.wait(lock, [this] { return m_count == 0; });
    }

    void ArriveAndWait()
    {
        CountDown();
        Wait();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_isOpen;
    int m_count;
};
