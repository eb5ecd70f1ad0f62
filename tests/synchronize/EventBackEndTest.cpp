// What the back ends of the events agree on.

#include "main/synchronize/EventBackEnd.h"

#include "support/SleepingThread.h"

#include <gtest/gtest.h>

#include <array>
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
using Clock = std::chrono::steady_clock;

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
        if (milliseconds == Infinite)
            m_condition.wait(lock, [&] { return isReleased; });
        else
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

TYPED_TEST(EventBackEndTest, SetLookReset)
{
    for (EventReset const reset : {EventReset::Manual, EventReset::Auto})
    {
        bool const isManual = reset == EventReset::Manual;
        SCOPED_TRACE(isManual);
        TypeParam event(reset);
        EXPECT_FALSE(event.Wait(0));
        for (std::uint32_t const limit : {0u, 1u, 1000u, Infinite - 1, Infinite})
        {
            event.Set();
            event.Set();
            EXPECT_TRUE(event.Wait(limit));
            EXPECT_EQ(event.Wait(0), isManual);
            event.Set();
            event.Reset();
            event.Reset();
            EXPECT_FALSE(event.Wait(0));
        }
    }
}

TYPED_TEST(EventBackEndTest, TimeLimitPassesAndLeavesNothingBehind)
{
    for (EventReset const reset : {EventReset::Manual, EventReset::Auto})
    {
        TypeParam event(reset);
        auto const start = Clock::now();
        EXPECT_FALSE(event.Wait(30));
        EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(30));
        event.Set();
        EXPECT_TRUE(event.Wait(0)) << "the signal went to the wait that had given up";
    }
}

TYPED_TEST(EventBackEndTest, ReleasesSleepingThreads)
{
    for (EventReset const reset : {EventReset::Manual, EventReset::Auto})
    {
        bool const isManual = reset == EventReset::Manual;
        SCOPED_TRACE(isManual);
        TypeParam event(reset);
        std::atomic<int> released{0};
        {
            std::list<SleepingThread> threads;
            for (std::uint32_t const limit : {Infinite, Infinite - 1, Infinite})
                threads.emplace_back([&event, &released, limit] { released += event.Wait(limit); });
            for (SleepingThread const &thread : threads)
                thread.WaitUntilAsleep();
            EXPECT_EQ(released, 0);
            for (int signal = 0; signal < (isManual ? 1 : 3); ++signal)
                event.Set();
            event.Reset();
        }
        EXPECT_EQ(released, 3);
        EXPECT_FALSE(event.Wait(0));
    }
}

// Neither a thread that comes later nor `Reset` takes a release away from a thread that was there before.
TYPED_TEST(EventBackEndTest, ReleasesBelongToThoseWhoWaited)
{
    for (int round = 0; round < 10; ++round)
    {
        int const sleepers = 1 + round % 2;
        TypeParam event(EventReset::Auto);
        std::list<SleepingThread> threads;
        for (int i = 0; i < sleepers; ++i)
            threads.emplace_back([&event] { EXPECT_TRUE(event.Wait(Infinite)); });
        for (SleepingThread const &thread : threads)
            thread.WaitUntilAsleep();
        for (int i = 0; i < sleepers; ++i)
            event.Set();
        event.Reset();
        bool const isTaken = event.Wait(20);
        EXPECT_FALSE(isTaken) << "with " << sleepers << " sleepers";
        if (isTaken)
            event.Set(); // for the one who was left behind
    }
}

// One thread hands numbers to the other and back. A sanitizer sees what the events do not order.
TYPED_TEST(EventBackEndTest, PingPong)
{
    for (EventReset const reset : {EventReset::Manual, EventReset::Auto})
    {
        constexpr int Rounds = 5000;
        std::array<TypeParam, 2> events{TypeParam(reset), TypeParam(reset)};
        int number = 0; // guarded by the turn
        auto const play = [&](std::size_t self)
        {
            for (int i = 0; i < Rounds; ++i)
            {
                while (!events[self].Wait(i % 3 == 0 ? Infinite : 1))
                {
                }
                events[self].Reset();
                ++number;
                events[1 - self].Set();
            }
        };
        std::thread other(play, 1);
        events[0].Set();
        play(0);
        other.join();
        EXPECT_EQ(number, 2 * Rounds);
    }
}

// Every signal is given only when the one before has been taken; waits of all kinds race for it, many of
// which give up at that moment. Lost signals hang, doubled ones are counted.
TYPED_TEST(EventBackEndTest, AutoResetSignalsAreTakenOnce)
{
    constexpr int Signals = 10000;
    TypeParam event(EventReset::Auto);
    std::atomic<int> taken{0};
    auto const take = [&](unsigned int seed)
    {
        std::minstd_rand random(seed);
        while (taken < Signals)
            taken += event.Wait(random() % 4 == 0 ? 1 : 0);
    };
    std::thread first(take, 1);
    std::thread second(take, 2);
    for (int signal = 0; signal < Signals; ++signal)
    {
        event.Set();
        while (taken == signal)
            std::this_thread::yield();
        EXPECT_EQ(taken, signal + 1);
    }
    first.join();
    second.join();
    EXPECT_FALSE(event.Wait(0));
}

// A signal that comes when a wait gives up belongs to that wait, or to the next: to exactly one of them.
TYPED_TEST(EventBackEndTest, AutoResetSignalAtTheTimeLimit)
{
    constexpr int Rounds = 1000;
    TypeParam event(EventReset::Auto);
    std::atomic<int> begun{0};
    std::thread setter(
        [&]
        {
            std::minstd_rand random(3);
            for (int round = 1; round <= Rounds; ++round)
            {
                while (begun < round)
                    std::this_thread::yield();
                auto const end = Clock::now() + std::chrono::microseconds(950 + random() % 200);
                while (Clock::now() < end)
                {
                }
                event.Set();
            }
        });
    for (int round = 1; round <= Rounds; ++round)
    {
        begun = round;
        if (!event.Wait(1))
        {
            EXPECT_TRUE(event.Wait(Infinite));
        }
        EXPECT_FALSE(event.Wait(0));
    }
    setter.join();
}

// Threads that sleep and threads that give up, and signals that are taken back: nobody stays behind.
TYPED_TEST(EventBackEndTest, SignalWaitResetRaces)
{
    for (EventReset const reset : {EventReset::Manual, EventReset::Auto})
    {
        constexpr int Waits = 2000;
        TypeParam event(reset);
        std::atomic<int> atWork{2};
        auto const wait = [&](std::uint32_t limit)
        {
            for (int i = 0; i < Waits; ++i)
                event.Wait(limit);
            --atWork;
        };
        std::thread sleeper(wait, Infinite);
        std::thread quitter(wait, 1);
        while (atWork > 0)
        {
            event.Set();
            event.Reset();
            std::this_thread::yield();
        }
        sleeper.join();
        quitter.join();
        EXPECT_FALSE(event.Wait(0));
    }
}
