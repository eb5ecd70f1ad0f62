/// @file
/// EventBackEnd: the part of an event that differs between operating systems.
#pragma once

#include "main/platform/Atomic.h"

#include <cstdint>

namespace vansys::detail
{

/// What a wait that was satisfied leaves behind.
enum class EventReset : bool
{
    Manual, ///< the event stays set
    Auto,   ///< the event is not set any more
};

/// An event in user space. The back end says what `state` and `count` mean; both start at 0.
struct EventWords
{
    Atomic<std::uint32_t> state{0};
    Atomic<std::uint32_t> count{0};
};

/// A single event: no callbacks, and no rules about arguments. Not set at first.
///
/// The back ends agree on what happens to threads that wait:
/// - Manual reset: `Set` releases all threads that wait at that moment, also when `Reset` follows at once.
/// - Auto reset: `Set` releases one of the threads that wait, and the event is not set then; when none waits,
///   the event is set until one wait takes it. So two calls release two waiting threads, but without waiting
///   threads they are one signal.
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

    /// The first half of `Set` of a manual-reset event: the event is set, but threads may still have to be
    /// woken. To be followed by `Wake` with the result, for which the event need not exist any more.
    void const *SetWithoutWaking() noexcept;

    /// Null is no thread.
    static void Wake(void const *sleepers) noexcept;

    /// Takes a signal back. Threads that were released by it stay released.
    void Reset() noexcept;

    /// Waits until the event is set, for that many milliseconds at most; 0 only looks. True when it was set:
    /// with auto reset, the signal then belongs to the caller.
    bool Wait(std::uint32_t milliseconds) noexcept;

private:
    EventReset const m_reset;
    union // each back end has its own
    {
        EventWords m_words; ///< Linux
        void *m_handle;     ///< Windows
    };
};

} // namespace vansys::detail
