/// @file
/// In place of the library's headers of the platform: each access and each call is a step of the scheduler.
#pragma once

#include "explorer/Scheduler.h"

#include <atomic>
#include <functional>

namespace vansys::detail
{

using explorer::s_system;
using explorer::Site;

/// Stands still but when a time limit passes.
struct Clock
{
    using TimePoint = explorer::Time;

    static TimePoint Now() { return s_system->Now(); }
};

using ThreadIdentity = void const *;

inline ThreadIdentity CurrentThreadIdentity()
{
    return s_system->CurrentThread();
}

template <class T>
class Atomic
{
    using Order = std::memory_order;

public:
    Atomic(T value = T()) : m_value(value) {}

    T load(Order = {}, Site site = Site::Here()) const { return Found(site); }

    void store(T value, Order = {}, Site site = Site::Here())
    {
        Found(site);
        m_value = value;
    }

    T exchange(T value, Order = {}, Site site = Site::Here())
    {
        return Update([](T, T desired) { return desired; }, value, site);
    }

    T fetch_add(T value, Order = {}, Site site = Site::Here()) { return Update(std::plus(), value, site); }

    T fetch_sub(T value, Order = {}, Site site = Site::Here()) { return Update(std::minus(), value, site); }

    T fetch_or(T value, Order = {}, Site site = Site::Here()) { return Update(std::bit_or(), value, site); }

    T fetch_and(T value, Order = {}, Site site = Site::Here()) { return Update(std::bit_and(), value, site); }

    bool compare_exchange_strong(T &expected, T desired, Order = {}, Order = {}, Site site = Site::Here())
    {
        T const found = Found(site);
        bool const matches = found == expected || s_system->IsPlanted("does not compare", site);
        (matches ? m_value : expected) = matches ? desired : found;
        return matches;
    }

    bool compare_exchange_weak(T &expected, T desired, Order = {}, Order = {}, Site site = Site::Here())
    {
        return compare_exchange_strong(expected, desired, {}, {}, site);
    }

    T const *Address() const { return &m_value; }

private:
    T Found(Site site) const
    {
        s_system->Step(&m_value, sizeof m_value, site);
        return m_value;
    }

    template <class Operation>
    T Update(Operation operation, T value, Site site)
    {
        T const before = Found(site);
        if (s_system->IsPlanted("lets others come in between", site))
            Found(site);
        m_value = operation(before, value);
        return before;
    }

    T m_value;
};

using FutexWord = Atomic<std::uint32_t>;

inline bool FutexWaitUntil(FutexWord const &word, std::uint32_t expected, Clock::TimePoint deadline,
                           Site site = Site::Here())
{
    return s_system->Sleep(word.Address(), expected, deadline, site);
}

inline void FutexWait(FutexWord const &word, std::uint32_t expected, Site site = Site::Here())
{
    s_system->Sleep(word.Address(), expected, explorer::Never, site);
}

inline void FutexWakeOne(FutexWord const &word, Site site = Site::Here())
{
    s_system->Wake(word.Address(), 1, site);
}

inline void FutexWakeAll(FutexWord const &word, Site site = Site::Here())
{
    s_system->Wake(word.Address(), explorer::MaxThreads, site);
}

/// One look. Further ones would find what a look at another moment finds.
inline constexpr auto SpinUntil = [](auto look) { return look(); };
inline constexpr auto SpinWhileItPays = SpinUntil;

} // namespace vansys::detail
