/// @file
/// A second thread, for operations that are measured on one.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace bench
{

/// While it exists, so does a thread that sleeps. The C library leaves out atomic operations in a process
/// that never had a second thread, which is not what locks are for.
class Background
{
public:
    Background() : m_thread([this] { Sleep(); }) {}
    Background(Background const &) = delete;
    Background &operator=(Background const &) = delete;

    ~Background()
    {
        {
            std::lock_guard const lock(m_mutex);
            m_isEnd = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }

private:
    /// Not on a semaphore of the standard library: some keep a common table of sleepers, and would find this
    /// thread in it whenever another semaphore is released.
    void Sleep()
    {
        std::unique_lock lock(m_mutex);
        m_wake.wait(lock, [this] { return m_isEnd; });
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isEnd = false;
    std::thread m_thread; // started last
};

} // namespace bench
