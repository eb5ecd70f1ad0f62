/// @file
/// In place of the library's header: atomics of which each access is a step.
#pragma once

#include "explorer/Scheduler.h"

#include <atomic>
#include <cstring>

namespace vansys::detail
{

template <class T>
class Atomic
{
    using Site = explorer::Site;
    using Order = std::memory_order;

    static constexpr Order Any = std::memory_order_seq_cst;

public:
    Atomic(T value = T()) noexcept : m_value(value) {}
    Atomic(Atomic const &) = delete;
    Atomic &operator=(Atomic const &) = delete;

    T load(Order = Any, Site site = Site::Here()) const noexcept { return Found("load", site); }

    void store(T value, Order = Any, Site site = Site::Here()) noexcept
    {
        Found("store", site);
        m_value = value;
    }

    T exchange(T value, Order = Any, Site site = Site::Here()) noexcept
    {
        return Update("exchange", site, [=](T) { return value; });
    }

    T fetch_add(T value, Order = Any, Site site = Site::Here()) noexcept
    {
        return Update("fetch_add", site, [=](T before) { return before + value; });
    }

    T fetch_sub(T value, Order = Any, Site site = Site::Here()) noexcept
    {
        return Update("fetch_sub", site, [=](T before) { return before - value; });
    }

    T fetch_or(T value, Order = Any, Site site = Site::Here()) noexcept
    {
        return Update("fetch_or", site, [=](T before) { return before | value; });
    }

    T fetch_and(T value, Order = Any, Site site = Site::Here()) noexcept
    {
        return Update("fetch_and", site, [=](T before) { return before & value; });
    }

    bool compare_exchange_strong(T &expected, T desired, Order = Any, Order = Any,
                                 Site site = Site::Here()) noexcept
    {
        T const found = Found("compare_exchange", site);
        bool const matches = found == expected || s_scheduler->IsPlanted(explorer::Fault::BlindWrite, site);
        (matches ? m_value : expected) = matches ? desired : found;
        return matches;
    }

    bool compare_exchange_weak(T &expected, T desired, Order success = Any, Order failure = Any,
                               Site site = Site::Here()) noexcept
    {
        return compare_exchange_strong(expected, desired, success, failure, site);
    }

    T const *Address() const noexcept { return &m_value; }

private:
    template <class Change>
    T Update(char const *operation, Site site, Change change) noexcept
    {
        T const before = Found(operation, site);
        if (s_scheduler->IsPlanted(explorer::Fault::TornUpdate, site))
            Found("second half", site);
        m_value = static_cast<T>(change(before));
        return before;
    }

    T Found(char const *operation, Site site) const noexcept
    {
        s_scheduler->Step(operation, site);
        std::uint64_t bits = 0;
        std::memcpy(&bits, &m_value, sizeof m_value);
        s_scheduler->Saw(bits);
        return m_value;
    }

    static constexpr explorer::Scheduler *&s_scheduler = explorer::Scheduler::s_current;

    T m_value;
};

} // namespace vansys::detail
