/// @file
/// EventBackEnd: the part of an event that differs between operating systems.
#pragma once

#include "main/platform/InPlace.h"

#include <cstdint>

namespace vansys::detail
{

/// What a wait that was satisfied leaves behind.
enum class EventReset : bool
{
    Manual, ///< the event stays set
    Auto,   ///< the event is not set any more
};

/// A single event: no callbacks, and no rules about arguments. Not set at first.
///
/// The back ends agree on what happens to threads that wait:
/// - Manual reset: `Set` releases all threads that wait at that moment, also when `Reset` follows at once.
/// - Auto reset: `Set` releases one of the threads that wait at that moment, and the event is not set then.
///   Neither `Reset` nor a thread that comes later takes that away from it. When none waits, the event is set
///   until one wait takes it. So two calls release two waiting threads, but without waiting threads they are
///   one signal.
///
/// **Order.** What was done before `Set` is seen after the wait that it satisfied. Beyond that, `Set` and
/// `Wait(0)` are sequentially consistent: when one thread sets the event and then reads a flag, and another
/// writes the flag and then looks at the event, at least one of them finds what the other did.
///
/// **Lifetime.** To be kept until every call has returned, the `Set` that released a waiting thread included.
class EventBackEnd
{
public:
    /// Waits without limit.
    static constexpr std::uint32_t Infinite = 0xFFFFFFFF;

    explicit EventBackEnd(EventReset reset) noexcept;
    ~EventBackEnd();

    EventBackEnd(EventBackEnd const &) = delete;
    EventBackEnd &operator=(EventBackEnd const &) = delete;

    void Set() noexcept;

    /// Takes a signal back. Threads that were released by it stay released.
    void Reset() noexcept;

    /// Waits until the event is set, for that many milliseconds at most; 0 only looks. True when it was set:
    /// with auto reset, the signal then belongs to the caller. A thread that is released as its time runs out
    /// returns true, if late by as long as the releasing thread is kept from its work.
    bool Wait(std::uint32_t milliseconds) noexcept;

private:
    class State; // of each system's own

    InPlace<State, 4 * sizeof(void *)> m_state;
};

} // namespace vansys::detail
