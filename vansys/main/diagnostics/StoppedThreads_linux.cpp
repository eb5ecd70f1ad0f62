#include "main/diagnostics/StoppedThreads_linux.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace vansys::detail
{

void StackStorage::Unmap::operator()(StackStorage *storage) const noexcept
{
    munmap(storage, sizeof *storage);
}

StackStorage::Pointer StackStorage::Map(unsigned threadId)
{
    void *const memory = mmap(nullptr, sizeof(StackStorage), PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    return Pointer(new (memory) StackStorage(threadId));
}

bool StackStorage::IsOfThread() const noexcept
{
    int const savedError = errno;
    constexpr int NoSignal = 0;
    bool const isOfThread = tgkill(getpid(), ThreadId(), NoSignal) == 0;
    errno = savedError;
    return isOfThread;
}

void StackStorage::Answer(Registers const &registers) noexcept
{
    UnwoundFrames const frames = Unwind(registers, m_frames.data(), m_frames.size());
    m_count = frames.count;
    m_isComplete = frames.isComplete;
    SetState(Answered);
    FutexWakeAll(m_state); // which needs the address only
}

bool StackStorage::WaitForAnswer(Clock::TimePoint deadline) const noexcept
{
    bool inTime = true;
    while (GetState() == Asked && inTime)
        inTime = FutexWaitUntil(m_state, Asked, deadline);
    return GetState() == Answered;
}

ThreadStack StackStorage::Stack() const
{
    ThreadStack stack;
    stack.threadId = m_threadId;
    stack.answer = GetState() == Gone ? ThreadStack::Answer::Gone : ThreadStack::Answer::None;
    if (GetState() != Answered)
        return stack;
    stack.answer = ThreadStack::Answer::Given;
    stack.isComplete = m_isComplete;
    stack.frames.assign(m_frames.data(), m_frames.data() + m_count);
    return stack;
}

bool HasState(Storages const &storages, StackStorage::State state) noexcept
{
    return std::any_of(storages.begin(), storages.end(),
                       [state](StackStorage::Pointer const &storage)
                       { return storage->GetState() == state; });
}

void ReplaceState(Storages const &storages, StackStorage::State state, StackStorage::State by) noexcept
{
    for (StackStorage::Pointer const &storage : storages)
        if (storage->GetState() == state)
            storage->SetState(by);
}

} // namespace vansys::detail
