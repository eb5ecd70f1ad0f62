#include "vansys/TAutoResetEvent.h"
#include "vansys/TCancelEvent.h"
#include "vansys/TCountdownEvent.h"
#include "vansys/TEvent.h"

#include "support/RecordedAssertions.h"
#include "support/SleepingThread.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

using MakeEvent = std::unique_ptr<IEvent> (*)();

/// What all classes share is tested on all of them, fresh and not set. One signal sets each.
class IEventTest : public testing::TestWithParam<MakeEvent>
{
protected:
    void Add(std::size_t i, std::function<void()> callback)
    {
        m_event.AddOnSignalCallback(&m_keys[i], callback);
    }
    void Remove(std::size_t i) { m_event.RemoveOnSignalCallback(&m_keys[i]); }

    std::function<void()> Log(char letter)
    {
        return [this, letter] { m_log += letter; };
    }

    void SignalAgain()
    {
        m_event.Reset();
        m_event.Signal();
    }

    std::unique_ptr<IEvent> const m_owner = GetParam()();
    IEvent const &m_event = *m_owner;
    bool const m_staysSet = !dynamic_cast<TAutoResetEvent const *>(&m_event);
    std::array<char, 5> m_keys{}; // in ascending order of their addresses
    std::string m_log;
};

template <class Event, auto... arguments>
std::unique_ptr<IEvent> Make()
{
    return std::make_unique<Event>(arguments...);
}

INSTANTIATE_TEST_SUITE_P(Events, IEventTest,
                         testing::Values(Make<TEvent>, Make<TAutoResetEvent>, Make<TCountdownEvent, 1>,
                                         Make<TCancelEvent>));

} // namespace

TEST_P(IEventTest, SignalLookReset)
{
    for (int look = 0; look < 4; ++look)
    {
        EXPECT_FALSE(m_event.IsSet());
        m_event.Signal();
        EXPECT_TRUE(look == 0 ? m_event.IsSet() : look == 1 ? m_event.Wait() : m_event.Wait(look * 1h - 2h));
        EXPECT_EQ(m_event.IsSet(), m_staysSet);
        m_event.Reset();
    }
}

TEST_P(IEventTest, TimeLimits)
{
    // And when they pass.
    std::pair<milliseconds, std::optional<milliseconds>> const rows[] = {
        {0ms, 0ms}, {20ms, 20ms},       {-4294967296ms, 0ms}, {-4294967266ms, 30ms},
        {-1ms, {}}, {4294967296ms, {}}, {-4294967297ms, {}},
    };
    RecordedAssertions assertions;
    for (auto const &[limit, time] : rows)
    {
        SCOPED_TRACE(limit.count());
        bool released = false;
        auto const start = Clock::now();
        SleepingThread thread([&, limit = limit] { released = m_event.Wait(limit); });
        if (!time)
        {
            thread.WaitUntilAsleep();
            m_event.Signal();
        }
        thread.Join();
        EXPECT_EQ(released, !time);
        EXPECT_GE(Clock::now() - start, time.value_or(0ms));
        m_event.Reset();
        std::string const report = "vansys/main/synchronize/TEventBase_win:65: timeout.count() >= 0";
        EXPECT_EQ(assertions.Take(), std::vector<std::string>(limit < 0ms ? 1 : 0, report));
    }
}

// A release belongs to those who waited when it was given: neither a thread that comes later nor `Reset`
// takes it away.
TEST_P(IEventTest, ReleasesSleepingThreads)
{
    for (bool const isTakenBack : {true, false})
    {
        std::list<SleepingThread> threads;
        for (auto const limit : {4294967294ms, 4294967295ms, milliseconds::max()})
            threads.emplace_back([&, limit] { EXPECT_TRUE(m_event.Wait(limit)); });
        for (SleepingThread const &thread : threads)
            thread.WaitUntilAsleep();
        m_event.Reset();
        for (int signal = 0; signal < (m_staysSet ? 1 : 3); ++signal)
            m_event.Signal();
        isTakenBack ? m_event.Reset() : m_event.Signal();
        EXPECT_EQ(m_event.Wait(0ms), !isTakenBack);
        EXPECT_EQ(m_event.IsSet(), m_staysSet && !isTakenBack);
        m_event.Reset();
    }
}

TEST_P(IEventTest, CallbacksRunInTheOrderOfTheirKeysAtEverySignal)
{
    for (std::size_t const i : {3u, 0u, 4u, 1u})
        Add(i, Log(static_cast<char>('0' + i)));
    Add(1, Log('x'));
    Add(1, Log('y'));
    Remove(4);
    Remove(2);
    m_event.Reset();
    EXPECT_EQ(m_log, "");
    m_event.Signal();
    EXPECT_EQ(std::exchange(m_log, ""), "0y3");
    Add(2, [this] { m_log += m_event.IsSet() ? "2" : "-"; });
    EXPECT_EQ(m_log, "") << "an event that is set already is no signal";
    SignalAgain();
    EXPECT_EQ(m_log, "0y23") << "set before they run";
}

TEST_P(IEventTest, CallbacksMayChangeTheCallbacksAndSignal)
{
    auto const removeAll = [&]
    {
        for (std::size_t i = 0; i < m_keys.size(); ++i)
            Remove(i);
    };
    int runs = 0;
    auto const signalOnce = [&]
    {
        if (++runs % 2 == 1)
            SignalAgain();
    };
    // What the second of the callbacks "1", "2" and "3" does, and what three signals log.
    std::pair<std::function<void()>, char const *> const rows[] = {
        {[&] { Remove(2); }, "123 13 13 "},
        {[&] { Remove(3); }, "12 12 12 "},
        {[&] { Remove(1); }, "123 23 23 "},
        {[&] { Add(2, Log('x')); }, "123 1x3 1x3 "},
        {[&] { Add(4, Log('x')); }, "123x 123x 123x "},
        {[&] { Add(0, Log('x')); }, "123 x123 x123 "},
        {removeAll, "12   "},
        {signalOnce, "112323 112323 112323 "},
        {[&] { signalOnce(), Remove(2); }, "112323 13 13 "},
    };
    for (auto const &[change, log] : rows)
    {
        m_log.clear();
        char letter = '2'; // until the callback is destroyed
        std::shared_ptr<char> own(&letter, [](char *dead) { *dead = '!'; });
        Add(1, Log('1'));
        Add(2, [this, &change = change, own = std::move(own)] { change(), m_log += *own; });
        Add(3, Log('3'));
        for (int signal = 0; signal < 3; ++signal)
        {
            SignalAgain();
            m_log += ' ';
        }
        EXPECT_EQ(m_log, log);
        removeAll();
    }
}

// What a callback owns may need a lock, or the event, as it is destroyed. Here, another thread needs the
// event.
TEST_P(IEventTest, CallbacksAreDestroyedWithoutTheLock)
{
    int destroyed = 0;
    auto const useEvent = [&](void *)
    {
        std::thread([&] { Remove(0); }).join();
        ++destroyed;
    };
    std::function<void()> const changes[] = {[&] { Remove(1); }, [&] { Add(1, [] {}); }};
    for (auto const &change : changes)
    {
        Add(1, [&change, own = std::shared_ptr<void>(this, useEvent)] { change(); });
        SignalAgain();
        EXPECT_EQ(std::exchange(destroyed, 0), 1);
        Add(1, [own = std::shared_ptr<void>(this, useEvent)] {});
        change();
        EXPECT_EQ(std::exchange(destroyed, 0), 1);
    }
}

TEST_P(IEventTest, ExceptionsOfCallbacksEndTheWalk)
{
    Add(0, Log('0'));
    Add(1, [] { throw 1; });
    Add(2, Log('2'));
    EXPECT_THROW(m_event.Signal(), int);
    EXPECT_TRUE(m_event.IsSet());
    // On another thread, as this one would get into a lock that it had kept.
    std::thread([&] { Add(1, nullptr); }).join();
    EXPECT_THROW(SignalAgain(), std::bad_function_call);
    EXPECT_EQ(m_log, "00");
}

TEST(TCountdownEvent, IsSetAtZeroAndUsableAgainAfterReset)
{
    struct
    {
        unsigned int count;
        char const *signals; ///< 'r' is a reset
        char const *states;  ///< of the event, after each
        int runs;
    } const rows[] = {{2, "ssssrsrsssr", "-111----11-", 2}, {0, "ssrs", "----", 0}};
    for (auto const &row : rows)
    {
        TCountdownEvent const event(row.count);
        std::string states;
        int runs = 0;
        event.AddOnSignalCallback(&runs, [&runs] { ++runs; });
        for (char const signal : std::string(row.signals))
        {
            signal == 's' ? event.Signal() : event.Reset();
            states += event.IsSet() ? '1' : '-';
        }
        EXPECT_EQ(states, row.states);
        EXPECT_EQ(runs, row.runs);
    }
}

TEST(TCountdownEvent, CountsTheSignalsOfSeveralThreads)
{
    TCountdownEvent const event(40000);
    auto const signal = [&event]
    {
        for (int i = 0; i < 20000; ++i)
            event.Signal();
    };
    std::thread other(signal);
    signal();
    other.join();
    EXPECT_TRUE(event.IsSet());
}
