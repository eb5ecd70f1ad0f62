#include "vansys/TAutoResetEvent.h"
#include "vansys/TEvent.h"
#include "vansys/WaitForEvents.h"

#include "Rows.h"
#include "synchronize/Background.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <semaphore>
#include <thread>
#include <vector>

namespace bench
{

namespace
{

using namespace std::chrono_literals;

constexpr char CondVar[] = "mutex + condvar";
constexpr char BinarySemaphore[] = "std::binary_semaphore";

/// The manual-reset event that one writes with the standard library.
class CondVarEvent
{
public:
    void Signal()
    {
        {
            std::lock_guard const lock(m_mutex);
            m_isSet = true;
        }
        m_condition.notify_all();
    }

    bool IsSet()
    {
        std::lock_guard const lock(m_mutex);
        return m_isSet;
    }

    void Reset()
    {
        std::lock_guard const lock(m_mutex);
        m_isSet = false;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_isSet = false;
};

template <class Event>
void SignalLookReset(benchmark::State &state)
{
    Background const background;
    Event event;
    for (auto _ : state)
    {
        event.Signal();
        benchmark::DoNotOptimize(event.IsSet());
        event.Reset();
    }
}

// Ping-pong: what hands a turn to the other thread.

class EventTurn
{
public:
    void Give() { m_event.Signal(); }
    void Take() { m_event.Wait(); }

private:
    TAutoResetEvent m_event;
};

class CondVarTurn
{
public:
    void Give()
    {
        {
            std::lock_guard const lock(m_mutex);
            m_isGiven = true;
        }
        m_condition.notify_one();
    }

    void Take()
    {
        std::unique_lock lock(m_mutex);
        m_condition.wait(lock, [this] { return m_isGiven; });
        m_isGiven = false;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_isGiven = false;
};

class SemaphoreTurn
{
public:
    void Give() { m_semaphore.release(); }
    void Take() { m_semaphore.acquire(); }

private:
    std::binary_semaphore m_semaphore{0};
};

/// Answers on a thread of its own, each time that it is given the turn.
template <class Turn, class Answer>
class Partner
{
public:
    explicit Partner(Answer answer) : m_answer(std::move(answer)) {}

    ~Partner()
    {
        m_isOver = true;
        m_turn.Give();
        m_thread.join();
    }

    void GiveTurn() { m_turn.Give(); }

private:
    void Run()
    {
        for (m_turn.Take(); !m_isOver; m_turn.Take())
            m_answer();
    }

    Turn m_turn;
    Answer m_answer;
    std::atomic<bool> m_isOver{false};
    std::thread m_thread{[this] { Run(); }};
};

template <class Turn>
void PingPong(benchmark::State &state)
{
    Turn back;
    auto const answer = [&back] { back.Give(); };
    Partner<Turn, decltype(answer)> partner(answer);
    for (auto _ : state)
    {
        partner.GiveTurn();
        back.Take();
    }
}

// Waiting for one of several.

constexpr std::size_t Several = 8;

class SeveralEvents
{
public:
    SeveralEvents()
    {
        for (TEvent &event : m_events)
            m_pointers.push_back(&event);
    }

    void Signal(std::size_t i) { m_events[i].Signal(); }
    void Reset(std::size_t i) { m_events[i].Reset(); }

    std::size_t Wait()
    {
        unsigned int index = 0;
        WaitForAny(m_pointers, 10s, index);
        return index;
    }

private:
    std::array<TEvent, Several> m_events;
    std::vector<IEvent *> m_pointers;
};

/// Flags of one waiting thread, which knows them all.
class SeveralFlags
{
public:
    void Signal(std::size_t i)
    {
        {
            std::lock_guard const lock(m_mutex);
            m_isSet[i] = true;
        }
        m_condition.notify_all();
    }

    void Reset(std::size_t i)
    {
        std::lock_guard const lock(m_mutex);
        m_isSet[i] = false;
    }

    std::size_t Wait()
    {
        std::unique_lock lock(m_mutex);
        auto found = m_isSet.end();
        m_condition.wait_for(lock, 10s,
                             [&]
                             {
                                 found = std::find(m_isSet.begin(), m_isSet.end(), true);
                                 return found != m_isSet.end();
                             });
        return static_cast<std::size_t>(found - m_isSet.begin());
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::array<bool, Several> m_isSet{};
};

template <class Events>
void WaitForTheLastOfSeveral(benchmark::State &state)
{
    Background const background;
    Events events;
    events.Signal(Several - 1);
    for (auto _ : state)
        benchmark::DoNotOptimize(events.Wait());
}

template <class Events>
void WaitForAnotherThread(benchmark::State &state)
{
    Events events;
    std::size_t next = 0; // handed over with the turn
    auto const answer = [&] { events.Signal(next); };
    Partner<SemaphoreTurn, decltype(answer)> partner(answer);
    for (auto _ : state)
    {
        partner.GiveTurn();
        events.Reset(events.Wait());
        next = (next + 1) % Several;
    }
}

} // namespace

void AddEventRows(Rows &rows)
{
    std::string const group = "events";

    rows.push_back({group, "signal, look, reset", Target{1.5, {CondVar}}});
    AddCase(rows.back(), OwnName, SignalLookReset<TEvent>);
    AddCase(rows.back(), CondVar, SignalLookReset<CondVarEvent>);

    rows.push_back({group, "ping-pong of two threads", Target{1, {BinarySemaphore, CondVar}}});
    AddWallTimeCase(rows.back(), OwnName, PingPong<EventTurn>);
    AddWallTimeCase(rows.back(), BinarySemaphore, PingPong<SemaphoreTurn>);
    AddWallTimeCase(rows.back(), CondVar, PingPong<CondVarTurn>);

    rows.push_back({group, "wait for any of 8, the last is set", Target{0.5, {CondVar}}});
    AddCase(rows.back(), OwnName, WaitForTheLastOfSeveral<SeveralEvents>);
    AddCase(rows.back(), CondVar, WaitForTheLastOfSeveral<SeveralFlags>);

    rows.push_back({group, "wait for any of 8, a thread sets one", Target{0.5, {CondVar}}});
    AddWallTimeCase(rows.back(), OwnName, WaitForAnotherThread<SeveralEvents>);
    AddWallTimeCase(rows.back(), CondVar, WaitForAnotherThread<SeveralFlags>);
}

} // namespace bench
