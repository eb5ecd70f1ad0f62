/// @file
/// The two ways in which Linux stops another thread of this process for a walk. x86-64 Linux only.
#pragma once

#include "main/diagnostics/Frames.h"
#include "main/diagnostics/Unwinder_linux.h"
#include "main/platform/Clock.h"
#include "main/platform/Futex.h"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include <sys/types.h>

namespace vansys::detail
{

/// Where the frames of a thread are put while nobody may allocate. Pages of its own, which cost memory only
/// where there are frames.
class StackStorage
{
public:
    enum State : FutexWord::value_type
    {
        Asked,
        Answered,
        Refused, ///< attaching is not allowed
        Silent,  ///< the thread has not stopped in time
        Gone     ///< no such thread
    };

    struct Unmap
    {
        void operator()(StackStorage *storage) const noexcept;
    };
    using Pointer = std::unique_ptr<StackStorage, Unmap>;

    /// Throws `std::bad_alloc`.
    static Pointer Map(unsigned threadId);

    pid_t ThreadId() const noexcept { return static_cast<pid_t>(m_threadId); }
    State GetState() const noexcept { return static_cast<State>(m_state.load(std::memory_order_acquire)); }
    void SetState(State state) noexcept { m_state.store(state, std::memory_order_release); }

    /// Whether there is such a thread in this process.
    bool IsOfThread() const noexcept;

    /// Puts the frames of that stack here, and wakes who waits, who may unmap this at once. Safe in signal
    /// handlers.
    void Answer(Registers const &registers) noexcept;

    /// Returns whether there is an answer.
    bool WaitForAnswer(Clock::TimePoint deadline) const noexcept;

    /// For lists of storages.
    StackStorage *next = nullptr;

    /// A copy of the frames. Throws `std::bad_alloc`.
    ThreadStack Stack() const;

private:
    explicit StackStorage(unsigned threadId) noexcept : m_threadId(threadId) {}

    FutexWord m_state{Asked};
    unsigned m_threadId;
    std::size_t m_count = 0;
    bool m_isComplete = false;
    std::array<Frame, MaxFrames> m_frames;
};

using Storages = std::vector<StackStorage::Pointer>;

bool HasState(Storages const &storages, StackStorage::State state) noexcept;
void ReplaceState(Storages const &storages, StackStorage::State state, StackStorage::State by) noexcept;

/// Walks the threads by a process that attaches to them. No state is `Asked` afterwards. One call at a time.
void WalkByAttaching(Storages const &storages, Clock::TimePoint deadline) noexcept;

/// Walks those whose state is `Asked` by a signal. A storage into which its thread may still write later is
/// taken out, and its pointer is null afterwards. One call at a time.
void WalkBySignal(Storages &storages, Clock::TimePoint deadline) noexcept;

} // namespace vansys::detail
