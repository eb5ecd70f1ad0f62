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
#include <memory>
#include <string>
#include <thread>

namespace
{

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

/// What all classes share is tested on all of them, fresh and not set. One signal sets each.
template <class Event>
class IEventTest : public testing::Test
{
protected:
    Event m_event;
};

/// So that it is made as the others are.
class CountdownOfOne : public TCountdownEvent
{
public:
    CountdownOfOne() : TCountdownEvent(1) {}
};

using Events = testing::Types<TEvent, TAutoResetEvent, CountdownOfOne, TCancelEvent>;
TYPED_TEST_SUITE(IEventTest, Events);

/// The addresses of its elements are keys, in ascending order.
using Keys = std::array<char, 5>;

} // namespace

TYPED_TEST(IEventTest, SignalLookReset)
{
    IEvent const &event = this->m_event;
    bool const staysSet = !std::is_same_v<TypeParam, TAutoResetEvent>;
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_FALSE(event.IsSet());
        EXPECT_FALSE(event.Wait(0ms));
        event.Signal();
        EXPECT_TRUE(event.IsSet());
        EXPECT_EQ(event.IsSet(), staysSet);
        event.Reset();
        event.Signal();
        EXPECT_TRUE(event.Wait());
        event.Reset();
        event.Signal();
        EXPECT_TRUE(event.Wait(1h));
        EXPECT_EQ(event.Wait(0ms), staysSet);
        event.Reset();
    }
}

TYPED_TEST(IEventTest, TimeLimits)
{
    IEvent const &event = this->m_event;
    auto const start = Clock::now();
    EXPECT_FALSE(event.Wait(30ms));
    EXPECT_GE(Clock::now() - start, 30ms);

    for (milliseconds const limit : {4294967294ms, 4294967295ms, 4294967296ms, milliseconds::max()})
    {
        SCOPED_TRACE(limit.count());
        bool released = false;
        SleepingThread thread([&] { released = event.Wait(limit); });
        thread.WaitUntilAsleep();
        event.Signal();
        thread.Join();
        EXPECT_TRUE(released);
        event.Reset();
    }
}

TYPED_TEST(IEventTest, NegativeTimeLimits)
{
    IEvent const &event = this->m_event;
    event.Signal();
    try
    {
        event.Wait(-1ms);
        ADD_FAILURE();
    }
    catch (VantrelException const &exception)
    {
        EXPECT_EQ(exception.GetMessagesFront(),
                  u"LogicAssert failed (but no hook has been set) at "
                  u"vansys/main/synchronize/TEventBase_win line 65: timeout.count() >= 0");
    }
    EXPECT_TRUE(event.IsSet());
    event.Reset();

    RecordedAssertions assertions;
    std::vector<std::string> const report{"vansys/main/synchronize/TEventBase_win:65: timeout.count() >= 0"};
    EXPECT_FALSE(event.Wait(-4294967296ms)) << "the low 32 bits are 0";
    EXPECT_EQ(assertions.Take(), report);
    auto const start = Clock::now();
    EXPECT_FALSE(event.Wait(-4294967266ms)) << "the low 32 bits are 30";
    EXPECT_GE(Clock::now() - start, 30ms);
    for (milliseconds const limit : {-1ms, -4294967297ms})
    {
        bool released = false;
        SleepingThread thread([&] { released = event.Wait(limit); });
        thread.WaitUntilAsleep();
        event.Signal();
        thread.Join();
        EXPECT_TRUE(released);
        event.Reset();
    }
}

TYPED_TEST(IEventTest, CallbacksRunInTheOrderOfTheirKeysAtEverySignal)
{
    IEvent const &event = this->m_event;
    Keys keys{};
    std::string log;
    auto const append = [&log](char letter) { return [&log, letter] { log += letter; }; };
    for (std::size_t const i : {3u, 0u, 4u, 1u})
        event.AddOnSignalCallback(&keys[i], append(static_cast<char>('0' + i)));
    event.AddOnSignalCallback(&keys[1], append('x'));
    event.AddOnSignalCallback(&keys[1], append('y'));
    event.RemoveOnSignalCallback(&keys[4]);
    event.RemoveOnSignalCallback(&keys[2]);
    event.Reset();
    EXPECT_EQ(log, "");
    event.Signal();
    EXPECT_EQ(log, "0y3");
    event.AddOnSignalCallback(&keys[2], append('2'));
    EXPECT_EQ(log, "0y3") << "an event that is set already is no signal";
    event.Reset();
    event.Signal();
    EXPECT_EQ(log, "0y30y23");
    for (char &key : keys)
        event.RemoveOnSignalCallback(&key);
    event.Reset();
    event.Signal();
    EXPECT_EQ(log, "0y30y23");
}

TYPED_TEST(IEventTest, CallbacksMayChangeTheCallbacks)
{
    IEvent const &event = this->m_event;
    Keys keys{};
    std::string log;
    struct Row
    {
        char const *name;
        std::function<void()> change; ///< what the second of the callbacks "1", "2" and "3" does
        char const *log;              ///< of three signals
    };
    auto const append = [&log](char letter) { return [&log, letter] { log += letter; }; };
    Row const rows[] = {
        {"remove itself", [&] { event.RemoveOnSignalCallback(&keys[2]); }, "123 13 13"},
        {"remove the next", [&] { event.RemoveOnSignalCallback(&keys[3]); }, "12 12 12"},
        {"remove the one before", [&] { event.RemoveOnSignalCallback(&keys[1]); }, "123 23 23"},
        {"replace itself", [&] { event.AddOnSignalCallback(&keys[2], append('x')); }, "123 1x3 1x3"},
        {"replace the next", [&] { event.AddOnSignalCallback(&keys[3], append('x')); }, "12x 12x 12x"},
        {"add behind", [&] { event.AddOnSignalCallback(&keys[4], append('x')); }, "123x 123x 123x"},
        {"add before", [&] { event.AddOnSignalCallback(&keys[0], append('x')); }, "123 x123 x123"},
        {"remove all",
         [&]
         {
             for (char &key : keys)
                 event.RemoveOnSignalCallback(&key);
         },
         "12  "},
        {"reset", [&] { event.Reset(); }, "123 123 123"},
    };
    for (Row const &row : rows)
    {
        SCOPED_TRACE(row.name);
        log.clear();
        event.AddOnSignalCallback(&keys[1], append('1'));
        event.AddOnSignalCallback(&keys[2],
                                  [&row, &log, own = std::make_shared<char>('2')]
                                  {
                                      row.change();
                                      log += *own; // alive, though it may be out of the table
                                  });
        event.AddOnSignalCallback(&keys[3], append('3'));
        for (int signal = 0; signal < 3; ++signal)
        {
            event.Reset();
            event.Signal();
            log += ' ';
        }
        EXPECT_EQ(log, std::string(row.log) + ' ');
        for (char &key : keys)
            event.RemoveOnSignalCallback(&key);
    }
}

TYPED_TEST(IEventTest, CallbacksMaySignalAndKeepTheirState)
{
    IEvent const &event = this->m_event;
    Keys keys{};
    std::string log;
    event.AddOnSignalCallback(&keys[0],
                              [&event, &log, depth = '0']() mutable
                              {
                                  log += ++depth;
                                  if (depth % 3 == 0)
                                      return;
                                  event.Reset();
                                  event.Signal();
                              });
    event.AddOnSignalCallback(&keys[1], [&log] { log += 'x'; });
    event.Signal();
    EXPECT_EQ(log, "123xxx");
    event.Reset();
    event.Signal();
    EXPECT_EQ(log, "123xxx456xxx");
}

TYPED_TEST(IEventTest, ExceptionsOfCallbacksEndTheWalk)
{
    IEvent const &event = this->m_event;
    Keys keys{};
    std::string log;
    event.AddOnSignalCallback(&keys[0], [&log] { log += '0'; });
    event.AddOnSignalCallback(&keys[1], [] { throw 1; });
    event.AddOnSignalCallback(&keys[2], [&log] { log += '2'; });
    EXPECT_THROW(event.Signal(), int);
    EXPECT_EQ(log, "0");
    EXPECT_TRUE(event.IsSet());

    // On another thread, as this one would get into a lock that it had kept.
    std::thread([&] { event.AddOnSignalCallback(&keys[1], nullptr); }).join();
    event.Reset();
    EXPECT_THROW(event.Signal(), std::bad_function_call);
    EXPECT_EQ(log, "00");
    std::thread([&] { event.RemoveOnSignalCallback(&keys[1]); }).join();
    event.Reset();
    event.Signal();
    EXPECT_EQ(log, "0002");
}

TYPED_TEST(IEventTest, RemovingWaitsForTheCallbackThatRuns)
{
    IEvent const &event = this->m_event;
    int key = 0;
    TEvent isRunning;
    TEvent mayEnd;
    std::atomic<bool> hasEnded{false};
    event.AddOnSignalCallback(&key,
                              [&]
                              {
                                  isRunning.Signal();
                                  mayEnd.Wait();
                                  hasEnded = true;
                              });
    std::thread signalling([&] { event.Signal(); });
    isRunning.Wait();
    SleepingThread removing(
        [&]
        {
            event.RemoveOnSignalCallback(&key);
            EXPECT_TRUE(hasEnded);
        });
    removing.WaitUntilAsleep();
    mayEnd.Signal();
    signalling.join();
}

TEST(TEvent, MayBeSetFromTheStart)
{
    EXPECT_TRUE(TEvent(true).IsSet());
    EXPECT_FALSE(TEvent(false).IsSet());
}

TEST(TCountdownEvent, IsSetAtZeroAndUsableAgainAfterReset)
{
    TCountdownEvent const event(2);
    int runs = 0;
    event.AddOnSignalCallback(&runs, [&runs] { ++runs; });
    for (int round = 1; round <= 2; ++round)
    {
        event.Signal();
        EXPECT_FALSE(event.IsSet());
        event.Signal();
        EXPECT_TRUE(event.IsSet());
        event.Signal(); // past 0
        event.Signal();
        EXPECT_TRUE(event.IsSet());
        EXPECT_EQ(runs, round);
        event.Reset();
        EXPECT_FALSE(event.IsSet());
    }
    event.Signal();
    event.Reset();
    event.Signal();
    EXPECT_FALSE(event.IsSet()) << "the count starts over, set or not";

    TCountdownEvent const zero(0);
    zero.Signal();
    zero.Signal();
    EXPECT_FALSE(zero.IsSet());
}
