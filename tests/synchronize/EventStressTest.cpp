// Threads that use the same events at the same time. What can be counted is counted exactly; the rest is for
// the sanitizers to see. Random numbers have fixed seeds.

#include "vansys/TAutoResetEvent.h"
#include "vansys/TCancelEvent.h"
#include "vansys/TCountdownEvent.h"
#include "vansys/TEvent.h"
#include "vansys/WaitForEvents.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using namespace std::chrono_literals;

/// Tells a test to go on until it has had its time, which is enough for some ten thousand rounds.
class Rounds
{
public:
    bool GoOn() const { return std::chrono::steady_clock::now() < m_end; }

private:
    std::chrono::steady_clock::time_point const m_end = std::chrono::steady_clock::now() + 500ms;
};

/// Runs a function on a thread of its own, once for each call of `Begin`.
class Helper
{
public:
    template <class Function>
    explicit Helper(Function function)
        : m_thread(
              [this, function = std::move(function)]
              {
                  for (m_begin.Wait(); !m_isOver; m_begin.Wait())
                  {
                      function();
                      m_end.Signal();
                  }
              })
    {
    }

    ~Helper()
    {
        m_isOver = true;
        m_begin.Signal();
        m_thread.join();
    }

    void Begin() { m_begin.Signal(); }
    void End() { m_end.Wait(); }

private:
    TAutoResetEvent m_begin;
    TAutoResetEvent m_end;
    std::atomic<bool> m_isOver{false};
    std::thread m_thread;
};

void PauseFor(unsigned int looks)
{
    for (std::atomic<unsigned int> i{0}; i < looks; ++i)
    {
    }
}

/// The last event of a vector: when it is looked at, all others have their callbacks.
class DoorEvent : public TEvent
{
public:
    DoorEvent(bool isSet, std::function<void()> onLook) : TEvent(isSet), m_onLook(std::move(onLook)) {}

    bool IsSet() const override
    {
        m_onLook();
        return TEvent::IsSet();
    }

private:
    std::function<void()> m_onLook;
};

} // namespace

// A callback that has been removed is neither running nor will it run: what it used is destroyed at once.
TEST(EventStress, CallbacksComeAndGoDuringSignals)
{
    TEvent const event;
    std::atomic<bool> isOver{false};
    std::atomic<int> runs{0};
    auto const comeAndGo = [&](unsigned int seed)
    {
        std::minstd_rand random(seed);
        std::array<char, 3> keys{};
        std::array<std::unique_ptr<int>, 3> numbers;
        for (Rounds const rounds; rounds.GoOn();)
        {
            std::size_t const slot = random() % keys.size();
            event.RemoveOnSignalCallback(&keys[slot]);
            numbers[slot] = std::make_unique<int>(0);
            event.AddOnSignalCallback(&keys[slot],
                                      [&runs, number = numbers[slot].get()]
                                      {
                                          ++*number; // under the callback lock only
                                          ++runs;
                                      });
            if (random() % 2 == 0)
                event.RemoveOnSignalCallback(&keys[slot]);
        }
        for (char &key : keys)
            event.RemoveOnSignalCallback(&key);
    };
    std::thread other(comeAndGo, 1);
    std::thread signalling(
        [&]
        {
            while (!isOver)
                event.Signal();
        });
    comeAndGo(2);
    other.join();
    isOver = true;
    signalling.join();
    int const before = runs;
    event.Signal();
    EXPECT_EQ(runs, before);
}

// Whoever adds a callback and then looks at the event learns of every signal, by one or the other.
TEST(EventStress, NoSignalPassesBetweenAddingACallbackAndLooking)
{
    TEvent const event;
    std::minstd_rand random(3);
    std::atomic<int> runs{0};
    Helper signalling([&] { event.Signal(); });
    for (Rounds const rounds; rounds.GoOn();)
    {
        runs = 0;
        signalling.Begin();
        PauseFor(random() % 64);
        event.AddOnSignalCallback(&runs, [&runs] { ++runs; });
        bool const wasSet = event.IsSet();
        signalling.End();
        EXPECT_TRUE(wasSet || runs == 1);
        event.RemoveOnSignalCallback(&runs);
        event.Reset();
    }
}

// One signal for each call, once the call has its callbacks.
TEST(EventStress, WaitForAnyTakesTheSignalThatItReports)
{
    std::array<TAutoResetEvent, 3> events;
    std::minstd_rand random(4);
    std::size_t next = 0;
    Helper signalling([&] { events[next].Signal(); });
    DoorEvent door(false, [&] { signalling.Begin(); });
    for (Rounds const rounds; rounds.GoOn();)
    {
        next = random() % events.size();
        unsigned int index = 99;
        EXPECT_TRUE(WaitForAny({&events[0], &events[1], &events[2], &door}, 1h, index));
        EXPECT_EQ(index, next);
        signalling.End();
        for (TAutoResetEvent const &event : events)
            EXPECT_FALSE(event.IsSet());
    }
}

TEST(EventStress, WaitForAllTakesOneSignalOfEach)
{
    std::array<TAutoResetEvent, 3> events;
    Helper first([&] { events[1].Signal(); });
    Helper second(
        [&]
        {
            events[2].Signal();
            events[0].Signal();
        });
    DoorEvent door(true,
                   [&]
                   {
                       first.Begin();
                       second.Begin();
                   });
    for (Rounds const rounds; rounds.GoOn();)
    {
        EXPECT_TRUE(WaitForAll({&events[0], &events[1], &events[2], &door}, 1h));
        first.End();
        second.End();
        for (TAutoResetEvent const &event : events)
            EXPECT_FALSE(event.IsSet());
    }
}

// A signal that comes when the call gives up is taken and reported, or it is still there.
TEST(EventStress, WaitForAnyLosesNoSignalWhenItGivesUp)
{
    TAutoResetEvent event;
    std::minstd_rand random(5);
    unsigned int pause = 0;
    Helper signalling(
        [&]
        {
            PauseFor(pause);
            event.Signal();
        });
    DoorEvent door(false, [&] { signalling.Begin(); });
    for (Rounds const rounds; rounds.GoOn();)
    {
        pause = random() % 256;
        bool const taken = WaitForAny({&event, &door}, random() % 20 == 0 ? 1ms : 0ms);
        signalling.End();
        EXPECT_NE(event.IsSet(), taken);
    }
}

TEST(EventStress, CountdownsOfManyThreads)
{
    constexpr unsigned int SignalsOfOne = 200;
    TCountdownEvent const event(2 * SignalsOfOne);
    std::atomic<int> runs{0};
    event.AddOnSignalCallback(&runs, [&runs] { ++runs; });
    auto const signal = [&event]
    {
        for (unsigned int i = 0; i < SignalsOfOne; ++i)
            event.Signal();
    };
    Helper other(signal);
    int round = 0;
    for (Rounds const rounds; rounds.GoOn();)
    {
        other.Begin();
        signal();
        EXPECT_TRUE(event.Wait());
        other.End();
        EXPECT_EQ(runs, ++round);
        event.Reset();
        EXPECT_FALSE(event.IsSet());
    }
}

using CancelEventPtr = RefCntPtr<TCancelEvent, RefCntObject>;

TEST(EventStress, ChildrenThatAreAddedDuringASignalAreSignalled)
{
    CancelEventPtr const root(new TCancelEvent);
    std::minstd_rand random(6);
    Helper signalling([&] { root->Signal(); });
    for (Rounds const rounds; rounds.GoOn();)
    {
        CancelEventPtr const child(new TCancelEvent);
        CancelEventPtr const grandchild(new TCancelEvent);
        signalling.Begin();
        PauseFor(random() % 64);
        root->Add(child);
        child->Add(grandchild);
        signalling.End();
        EXPECT_TRUE(child->IsSet() && grandchild->IsSet());
        root->Remove(child);
        root->Reset();
    }
}

TEST(EventStress, CancelTreesAreBuiltAndTornDownDuringSignals)
{
    CancelEventPtr const root(new TCancelEvent);
    auto const build = [&root](unsigned int seed)
    {
        std::minstd_rand random(seed);
        for (Rounds const rounds; rounds.GoOn();)
        {
            std::vector<CancelEventPtr> tree{root};
            std::vector<CancelEventPtr> belowRoot;
            for (int i = 0; i < 5; ++i)
            {
                CancelEventPtr const event(new TCancelEvent);
                CancelEventPtr const parent = tree[random() % tree.size()];
                parent->Add(event);
                tree.push_back(event);
                if (parent == root)
                    belowRoot.push_back(event);
            }
            for (CancelEventPtr const &event : belowRoot)
                root->Remove(event);
            // No signal reaches what has been cut off.
            tree.erase(tree.begin());
            for (CancelEventPtr const &event : tree)
                event->Reset();
            for (CancelEventPtr const &event : tree)
                EXPECT_FALSE(event->IsSet());
        }
    };
    std::atomic<bool> isOver{false};
    std::thread signalling(
        [&]
        {
            while (!isOver)
            {
                root->Signal();
                root->Reset();
            }
        });
    std::thread other(build, 7);
    build(8);
    other.join();
    isOver = true;
    signalling.join();
}
