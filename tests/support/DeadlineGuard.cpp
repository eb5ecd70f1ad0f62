// Ends a test program in which a test hangs, and says which one. Linked into programs with threaded tests; it
// reaches all their tests by itself.

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

namespace
{

/// Far beyond what any test takes, also with a sanitizer on a busy machine. Counted in slices, so that a
/// machine that stands still for minutes, or a clock that is set forward, takes one slice off and not all.
constexpr std::chrono::seconds Slice(1);
constexpr int SliceLimit = 180;

class DeadlineGuard : public testing::EmptyTestEventListener
{
public:
    void OnTestStart(testing::TestInfo const &test) override
    {
        m_isOver = false;
        m_watch =
            std::thread(&DeadlineGuard::Watch, this, std::string(test.test_suite_name()) + "." + test.name());
    }

    void OnTestEnd(testing::TestInfo const &) override
    {
        {
            std::lock_guard const lock(m_mutex);
            m_isOver = true;
        }
        m_condition.notify_one();
        m_watch.join();
    }

private:
    void Watch(std::string const &name)
    {
        std::unique_lock lock(m_mutex);
        // The system's clock: the sanitizers do not follow waits by other clocks.
        for (int slice = 0; slice < SliceLimit; ++slice)
            if (m_condition.wait_until(lock, std::chrono::system_clock::now() + Slice,
                                       [this] { return m_isOver; }))
                return;
        std::fprintf(stderr, "%s hangs\n", name.c_str());
        std::abort();
    }

    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_isOver = false;
    std::thread m_watch;
};

[[maybe_unused]] bool const g_isInstalled = []
{
    testing::UnitTest::GetInstance()->listeners().Append(new DeadlineGuard); // which takes it over
    return true;
}();

} // namespace
