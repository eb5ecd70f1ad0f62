#include "vansys/WaitForEvents.h"
#include "vansys/TAutoResetEvent.h"
#include "vansys/TCancelEvent.h"
#include "vansys/TCountdownEvent.h"
#include "vansys/TEvent.h"
#include "vansys/VantrelException.h"

#include "support/RecordedAssertions.h"
#include "support/SleepingThread.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using namespace std::chrono_literals;
using std::chrono::milliseconds;

/// No position; `WaitForAny` leaves it alone when it fails.
constexpr unsigned int None = 99;

/// An event of a host's own. It lets a test act in the middle of a call: when the events before it in the
/// vector have their callbacks.
class ProbeEvent : public TEvent
{
public:
    bool IsSet() const override
    {
        EXPECT_EQ(m_callbacks, 1) << "a signal may come between the look and the callback";
        m_onLook();
        return TEvent::IsSet();
    }

    void AddOnSignalCallback(void *key, std::function<void()> callback) const override
    {
        ++m_callbacks;
        m_callback = callback;
        TEvent::AddOnSignalCallback(key, std::move(callback));
    }

    void RemoveOnSignalCallback(void *key) const override
    {
        --m_callbacks;
        TEvent::RemoveOnSignalCallback(key);
        m_onRemove();
    }

    std::function<void()> m_onLook = [] {};
    std::function<void()> m_onRemove = [] {};
    int mutable m_callbacks = 0;
    std::function<void()> mutable m_callback;
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
    countdown.Signal();
    cancel.Signal();
    EXPECT_EQ(IndexOfAny({&countdown, &cancel, &event}), 0u);
    EXPECT_TRUE(WaitForAll({&event, &countdown, &cancel, &event}, 0ms));
    EXPECT_TRUE(event.IsSet());

    ProbeEvent probe; // no short cut in sight
    EXPECT_EQ(IndexOfAny({&probe, &unset, &event, &cancel}), 2u);
    EXPECT_FALSE(WaitForAll({&event, &probe}, 0ms));
    probe.Signal();
    EXPECT_TRUE(WaitForAll({&event, &countdown, &probe}, 0ms));
    EXPECT_EQ(IndexOfAny({&probe, &event}), 0u);

    // Callers rely on it: the look at a set auto-reset event takes its signal, and then there is none to
    // count.
    TAutoResetEvent automatic;
    automatic.Signal();
    EXPECT_EQ(IndexOfAny({&automatic}), None);
    EXPECT_FALSE(automatic.IsSet());
    automatic.Signal();
    EXPECT_FALSE(WaitForAll({&automatic, &event}, 0ms));
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
    probe.Signal();
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
    probe.Reset();
    first.AddOnSignalCallback(nullptr, [&] { first.Reset(); });
    probe.m_onLook = [&]
    {
        first.Signal();
        first.RemoveOnSignalCallback(nullptr);
        first.Signal();
    };
    EXPECT_EQ(IndexOfAny({&first, &probe}), None);
    EXPECT_TRUE(first.IsSet());

    // A signal when the time has run out, but the callbacks are still there, is taken and counts.
    probe.m_onLook = [] {};
    probe.m_onRemove = [&] { first.Signal(); };
    EXPECT_EQ(IndexOfAny({&probe, &first}), 1u);
    EXPECT_FALSE(first.IsSet());
    EXPECT_EQ(IndexOfAny({&first, &probe}), None);
    EXPECT_TRUE(first.IsSet());
}

TEST(WaitForEvents, TimeLimits)
{
    TEvent unset;
    auto const start = std::chrono::steady_clock::now();
    EXPECT_FALSE(WaitForAll({}, 20ms));
    EXPECT_EQ(IndexOfAny({&unset}, 20ms), None);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 40ms);
    unset.Signal();
    EXPECT_THROW(WaitForAll({&unset}, -1ms), VantrelException) << "though no wait is needed";
}

// Another event's callback calls on the host's event and then waits for the call to return.
TEST(WaitForEvents, SignalOfAHostsEventWakesAtOnce)
{
    TEvent const event;
    TEvent const hasReturned;
    TEvent const isAdded;
    ProbeEvent probe;
    probe.m_onLook = [&] { isAdded.Signal(); };
    SleepingThread waiting([&] { WaitForAny({&probe}, milliseconds::max()), hasReturned.Signal(); });
    isAdded.Wait();
    waiting.WaitUntilAsleep();
    event.AddOnSignalCallback(nullptr, [&] { probe.m_callback(), hasReturned.Wait(); });
    event.Signal();
}

// A callback waits for its own event, and the event is signalled on the same thread meanwhile.
TEST(WaitForEvents, MayBeCalledByACallbackOfTheEvent)
{
    TEvent event;
    ProbeEvent probe;
    probe.m_onLook = [&] { event.Signal(); };
    int depth = 0;
    event.AddOnSignalCallback(nullptr,
                              [&]
                              {
                                  event.Reset();
                                  if (depth++ > 0)
                                      return;
                                  event.Reset();
                                  EXPECT_EQ(IndexOfAny({&event, &probe}, milliseconds::max()), 0u);
                              });
    event.Signal();
    EXPECT_EQ(depth, 2);
}

TEST(WaitForEvents, CallbacksAreRemovedWhateverHappens)
{
    ProbeEvent probe;
    ProbeEvent other;
    TEvent event;
    auto const expectNone = [&](char const *when)
    { EXPECT_EQ(probe.m_callbacks + other.m_callbacks, 0) << when; };
    other.m_onLook = [] { throw 1; };
    EXPECT_FALSE(WaitForAll({&probe, &event}, 0ms));
    expectNone("in vain");
    EXPECT_THROW(IndexOfAny({&probe, &event}, -1ms), VantrelException);
    expectNone("negative");
    EXPECT_THROW(WaitForAll({&probe, &other, &event}, 0ms), int);
    expectNone("throwing look");
    EXPECT_THROW(WaitForAny({&event, nullptr}, 0ms), VantrelException);
    expectNone("null");

    RecordedAssertions const assertions;
    event.Signal();
    EXPECT_EQ(IndexOfAny({nullptr, &event, nullptr}), 1u);
    EXPECT_EQ(assertions.Take(),
              std::vector<std::string>(2, "vansys/main/synchronize/WaitForEvents:143: event != nullptr"));
    EXPECT_FALSE(WaitForAll({nullptr, &event}, 0ms));
}

// Signals come before the call, while it adds its callbacks and looks, and as it waits.
TEST(WaitForEvents, MissesNoSignal)
{
    std::array<TCancelEvent, 2> events;
    TAutoResetEvent never;
    int number = 0; // guarded by the turn
    std::atomic<std::size_t> turn{0};
    auto const play = [&](std::size_t self)
    {
        for (int i = 0; i < 5000; ++i)
        {
            // A signal that the other is still at may end a wait twice.
            do
            {
                EXPECT_EQ(IndexOfAny({&never, &events[self]}, milliseconds::max()), 1u);
                events[self].Reset();
            } while (turn != self);
            ++number;
            turn = 1 - self;
            events[1 - self].Signal();
        }
    };
    std::thread other(play, 1);
    events[0].Signal();
    play(0);
    other.join();
    EXPECT_EQ(number, 10000);
}
