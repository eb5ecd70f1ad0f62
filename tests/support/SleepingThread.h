/// @file
/// A thread of which a test can know that it sleeps.
#pragma once

#include <atomic>
#include <thread>
#include <utility>

/// Runs one function, and joins in the destructor.
class SleepingThread
{
public:
    template <class Function>
    explicit SleepingThread(Function function)
        : m_thread(
              [this, function = std::move(function)]
              {
                  m_id = Begin();
                  function();
              })
    {
    }

    ~SleepingThread() { Join(); }

    void Join()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

    /// Returns when the thread is asleep in its function. The function must do nothing but fall asleep in the
    /// end. On Windows, which does not tell, it returns when the thread has had time to fall asleep: a test
    /// must not fail when it has not.
    void WaitUntilAsleep() const;

private:
    /// Returns what the system calls the current thread, never 0.
    static long Begin();

    std::atomic<long> m_id{0};
    std::thread m_thread;
};
