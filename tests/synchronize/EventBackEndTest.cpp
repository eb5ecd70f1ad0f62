// What the back ends of the events agree on.

#include "main/synchronize/EventBackEnd.h"

#include "support/SleepingThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <mutex>
#include <random>
#include <thread>

using vansys::detail::EventBackEnd;
using vansys::detail::EventReset;

namespace
{

constexpr std::uint32_t Infinite = EventBackEnd::Infinite;

/// The yardstick: a test that this one fails is wrong itself.
class PlainEvent
{
public:
    explicit PlainEvent(EventReset reset) : m_isManual(reset == EventReset::Manual) {}

    void Set()
    {
        std::lock_guard const lock(m_mutex);
        m_isSet = m_isManual || m_waiting.empty();
        while (!m_waiting.empty())
        {
            *m_waiting.front() = true;
            m_waiting.pop_front();
            if (!m_isManual)
                break;
        }
        m_condition.notify_all();
    }

    void Reset()
    {
        std::lock_guard const lock(m_mutex);
        m_isSet = false;
    }

    bool Wait(std::uint32_t milliseconds)
    {
        std::unique_lock lock(m_mutex);
        if (m_isSet)
        {
            m_isSet = m_isManual;
            return true;
        }
        bool isReleased = false;
        m_waiting.push_back(&isReleased);
        auto const limit = std::chrono::system_clock::now() + std::chrono::milliseconds(milliseconds);
        m_condition.wait_until(lock, limit, [&] { return isReleased; });
        m_waiting.remove(&isReleased);
        return isReleased;
    }

private:
    bool const m_isManual;
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_isSet = false;
    std::list<bool *> m_waiting; // each points at what the thread is told
};

template <class BackEnd>
class EventBackEndTest : public testing::Test
{
};

using BackEnds = testing::Types<EventBackEnd, PlainEvent>;
TYPED_TEST_SUITE(EventBackEndTest, BackEnds);

} // namespace

// A release belongs to those who waited when it was given: neither a thread that comes later nor `Reset`
// takes it away.
TYPED_TEST(EventBackEndTest, ReleasesSleepingThreads)
{
    for (int round = 0; round < 12; ++round)
    {
        bool const isManual = round % 2 == 0;
        bool const isTakenBack = round % 4 < 2;
        SCOPED_TRACE(round);
        TypeParam event(isManual ? EventReset::Manual : EventReset::Auto);
        std::list<SleepingThread> threads;
        for (std::uint32_t const limit : {Infinite, Infinite - 1, Infinite})
            threads.emplace_back([&event, limit] { EXPECT_TRUE(event.Wait(limit)); });
        for (SleepingThread const &thread : threads)
            thread.WaitUntilAsleep();
        event.Reset();
        for (int signal = 0; signal < (isManual ? 1 : 3); ++signal)
            event.Set();
        isTakenBack ? event.Reset() : event.Set();
        bool const isTaken = event.Wait(20);
        EXPECT_NE(isTaken, isTakenBack);
        EXPECT_EQ(event.Wait(0), isManual && !isTakenBack);
        if (isTaken && isTakenBack)
            event.Set(); // for the one who was left behind
    }
}

// Every signal is given only when the one before has been taken; waits of all kinds race for it, many of
// which give up at that moment. Lost signals hang, doubled ones are counted; a sanitizer sees what the event
// does not order.
TYPED_TEST(EventBackEndTest, SignalsAreTakenOnce)
{
    constexpr int Signals = 10000;
    TypeParam event(EventReset::Auto);
    int given = 0;
    std::atomic<int> taken{0};
    auto const take = [&](unsigned int seed)
    {
        for (std::minstd_rand random(seed); taken < Signals;)
        {
            if (event.Wait(random() % 4 == 0 ? 1 : 0))
            {
                int const mine = given;
                EXPECT_EQ(mine, ++taken);
            }
        }
    };
    std::thread first(take, 1);
    std::thread second(take, 2);
    for (int signal = 1; signal <= Signals; ++signal)
    {
        given = signal;
        event.Set();
        while (taken < signal)
            std::this_thread::yield();
    }
    first.join();
    second.join();
    EXPECT_FALSE(event.Wait(0));
}
