#include "vansys/WaitForEvents.h"
#include "vansys/TAutoResetEvent.h"
#include "vansys/TCancelEvent.h"
#include "vansys/TCountdownEvent.h"
#include "vansys/TEvent.h"
#include "vansys/VantrelException.h"

#include "support/RecordedAssertions.h"
#include "support/SleepingThread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace std::chrono_literals;
using std::chrono::milliseconds;

/// No position; `WaitForAny` leaves it alone when it fails.
constexpr unsigned int None = 99;

/// An event of a host's own, never set. It notes what is asked of it, and lets a test act in the middle of a
/// call: when the events before it in the vector have their callbacks.
class ProbeEvent : public IEvent
{
public:
    void Signal() const override {}
    bool Wait(milliseconds) const override { return false; }
    bool Wait() const override { return false; }
    void Reset() const override {}

    bool IsSet() const override
    {
        m_log += "look ";
        if (m_onLook)
            m_onLook();
        return m_isSet;
    }

    void AddOnSignalCallback(void *key, std::function<void()> callback) const override
    {
        m_log += "add ";
        m_key = key;
        m_callback = std::move(callback);
    }

    void RemoveOnSignalCallback(void *key) const override
    {
        EXPECT_EQ(key, m_key);
        m_log += "remove ";
        m_callback = nullptr;
        if (m_onRemove)
            m_onRemove();
    }

    std::function<void()> m_onLook;
    std::function<void()> m_onRemove;
    bool m_isSet = false;
    mutable std::string m_log;
    mutable void *m_key = nullptr;
    mutable std::function<void()> m_callback;
};

unsigned int IndexOfAny(std::vector<IEvent *> const &events, milliseconds timeout = 0ms)
{
    unsigned int index = None;
    bool const success = WaitForAny(events, timeout, index);
    EXPECT_EQ(success, index != None);
    return index;
}

} // namespace

TEST(WaitForEvents, EventsThatAreSetAlready)
{
    TEvent unset;
    TCountdownEvent countdown(1);
    TCancelEvent cancel;
    TEvent event(true);
    EXPECT_EQ(IndexOfAny({&unset, &event, &cancel}), 1u);
    EXPECT_EQ(IndexOfAny({&countdown, &unset, &cancel}), None);
    EXPECT_FALSE(WaitForAll({&event, &unset}, 0ms));
    countdown.Signal();
    cancel.Signal();
    EXPECT_EQ(IndexOfAny({&countdown, &cancel, &event}), 0u);
    EXPECT_TRUE(WaitForAll({&event, &countdown, &cancel}, 0ms));
    EXPECT_TRUE(WaitForAll({&event, &event}, 0ms)) << "at two positions";
    EXPECT_TRUE(event.IsSet());

    ProbeEvent probe; // no short cut in sight
    EXPECT_EQ(IndexOfAny({&probe, &unset, &event, &cancel}), 2u);
    EXPECT_FALSE(WaitForAll({&event, &probe}, 0ms));
    probe.m_isSet = true;
    EXPECT_TRUE(WaitForAll({&event, &countdown, &probe}, 0ms));
    EXPECT_EQ(IndexOfAny({&probe, &event}), 0u);
}

// Callers rely on it: the look at a set auto-reset event takes its signal, and then there is none to count.
TEST(WaitForEvents, AutoResetEventsThatAreSetAlreadyDoNotCount)
{
    TAutoResetEvent automatic;
    TEvent event(true);
    automatic.Signal();
    EXPECT_EQ(IndexOfAny({&automatic}), None);
    EXPECT_FALSE(automatic.IsSet());
    automatic.Signal();
    EXPECT_FALSE(WaitForAll({&automatic, &event}, 0ms));
    EXPECT_FALSE(automatic.IsSet());
    automatic.Signal();
    EXPECT_EQ(IndexOfAny({&event, &automatic}), 0u);
    EXPECT_FALSE(automatic.IsSet());
}

TEST(WaitForEvents, EventsThatAreSignalledMeanwhile)
{
    TAutoResetEvent first;
    TEvent second;
    TCancelEvent third;
    ProbeEvent probe;
    probe.m_isSet = true;
    std::vector<IEvent *> const all{&first, &second, &third, &probe};
    probe.m_onLook = [&]
    {
        third.Signal();
        first.Signal();
        first.Signal();
        second.Signal();
        second.Reset(); // too late
    };
    EXPECT_EQ(IndexOfAny(all), 2u) << "the first to be signalled";
    EXPECT_TRUE(first.IsSet()) << "takes one signal only";
    third.Reset();
    EXPECT_TRUE(WaitForAll(all, 0ms));
    EXPECT_TRUE(first.IsSet());
    EXPECT_FALSE(WaitForAll({&first, &first, &probe}, 0ms)) << "a signal is for one position";

    // Somebody takes the signal first: the event counts no more in that call.
    probe.m_isSet = false;
    first.AddOnSignalCallback(nullptr, [&] { first.Reset(); });
    probe.m_onLook = [&]
    {
        first.Signal();
        first.RemoveOnSignalCallback(nullptr);
        first.Signal();
    };
    EXPECT_EQ(IndexOfAny({&first, &probe}), None);
    EXPECT_TRUE(first.IsSet());
}

// A signal that was taken when the time had run out, but the callbacks were still there.
TEST(WaitForEvents, SignalAtTheLastMomentIsNotLost)
{
    ProbeEvent probe;
    TAutoResetEvent event;
    probe.m_onRemove = [&] { event.Signal(); };
    EXPECT_EQ(IndexOfAny({&probe, &event}), 1u);
    EXPECT_FALSE(event.IsSet());
    EXPECT_EQ(IndexOfAny({&event, &probe}), None);
    EXPECT_TRUE(event.IsSet());
}

TEST(WaitForEvents, TimeLimits)
{
    TEvent unset;
    ProbeEvent probe;
    for (std::vector<IEvent *> const &events : {std::vector<IEvent *>{}, {&unset}, {&unset, &probe}})
    {
        auto const start = std::chrono::steady_clock::now();
        EXPECT_FALSE(WaitForAll(events, 20ms));
        EXPECT_FALSE(WaitForAny(events, 20ms));
        EXPECT_EQ(IndexOfAny(events, 20ms), None);
        EXPECT_GE(std::chrono::steady_clock::now() - start, 60ms);
    }
    unsigned int index = None;
    SleepingThread thread([&] { EXPECT_TRUE(WaitForAny({&probe, &unset}, milliseconds::max(), index)); });
    thread.WaitUntilAsleep();
    unset.Signal();
    thread.Join();
    EXPECT_EQ(index, 1u);
}

// A callback of another event may wait for the call to return.
TEST(WaitForEvents, SignalOfAHostsEventWakesAtOnce)
{
    TEvent const event;
    TEvent const hasReturned;
    TEvent const isAdded;
    ProbeEvent probe;
    probe.m_onLook = [&] { isAdded.Signal(); };
    SleepingThread waiting(
        [&]
        {
            EXPECT_TRUE(WaitForAny({&probe}, milliseconds::max()));
            hasReturned.Signal();
        });
    isAdded.Wait();
    waiting.WaitUntilAsleep();
    char keys[2] = {};
    event.AddOnSignalCallback(&keys[0], probe.m_callback);
    event.AddOnSignalCallback(&keys[1], [&] { hasReturned.Wait(); });
    event.Signal();
}

TEST(WaitForEvents, CallbacksAreRemovedWhateverHappens)
{
    ProbeEvent probe;
    ProbeEvent other;
    TEvent event;
    EXPECT_FALSE(WaitForAll({&probe, &event}, 0ms));
    EXPECT_EQ(std::exchange(probe.m_log, ""), "add look remove ");
    probe.m_isSet = true;
    EXPECT_EQ(IndexOfAny({&probe, &event}), 0u);
    EXPECT_EQ(std::exchange(probe.m_log, ""), "add look remove ");
    EXPECT_THROW(IndexOfAny({&probe, &event}, -1ms), VantrelException) << "though it is set";
    EXPECT_EQ(std::exchange(probe.m_log, ""), "add look remove ");
    event.Signal();
    EXPECT_THROW(WaitForAll({&event}, -1ms), VantrelException);
    other.m_onLook = [] { throw 1; };
    EXPECT_THROW(WaitForAll({&probe, &other, &event}, 0ms), int);
    EXPECT_EQ(std::exchange(probe.m_log, ""), "add look remove ");
    EXPECT_EQ(std::exchange(other.m_log, ""), "add look remove ");

    RecordedAssertions const assertions;
    EXPECT_EQ(IndexOfAny({&probe}, -4294967296ms), 0u);
    EXPECT_EQ(assertions.Take(),
              std::vector<std::string>{"vansys/main/synchronize/TEventBase_win:65: timeout.count() >= 0"});
}

TEST(WaitForEvents, NullPointers)
{
    TEvent event(true);
    EXPECT_THROW(WaitForAny({&event, nullptr}, 0ms), VantrelException);
    RecordedAssertions const assertions;
    EXPECT_EQ(IndexOfAny({nullptr, &event, nullptr}), 1u);
    EXPECT_EQ(assertions.Take(),
              std::vector<std::string>(2, "vansys/main/synchronize/WaitForEvents:143: event != nullptr"));
    EXPECT_FALSE(WaitForAll({nullptr, &event}, 0ms));
}
