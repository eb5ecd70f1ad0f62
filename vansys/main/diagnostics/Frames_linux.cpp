#include "main/diagnostics/Frames.h"

#include "main/diagnostics/CaptureStack.h"
#include "main/diagnostics/StoppedThreads_linux.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <dirent.h>
#include <memory>
#include <mutex>
#include <string_view>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

std::mutex g_walk;

struct CloseFolder
{
    void operator()(DIR *folder) const noexcept { closedir(folder); }
};

} // namespace

unsigned CurrentProcessId() noexcept
{
    return static_cast<unsigned>(getpid());
}

unsigned CurrentThreadId() noexcept
{
    return static_cast<unsigned>(gettid());
}

std::vector<unsigned> ListThreads()
{
    std::vector<unsigned> threads;
    std::unique_ptr<DIR, CloseFolder> const folder(opendir("/proc/self/task"));
    if (!folder)
        return threads;
    // Nobody else knows this folder, so that the call that is not safe for threads is.
    while (dirent const *const entry = readdir(folder.get())) // NOLINT(concurrency-mt-unsafe)
    {
        std::string_view const name = entry->d_name;
        unsigned id = 0;
        if (std::from_chars(name.data(), name.data() + name.size(), id).ec == std::errc())
            threads.push_back(id);
    }
    return threads;
}

ThreadStack WalkCallingThread(void const *innermost)
{
    std::vector<std::uintptr_t> addresses(256);
    std::size_t count = CaptureStack(addresses.data(), addresses.size());
    while (count == addresses.size() && count < MaxFrames)
    {
        addresses.resize(8 * addresses.size());
        count = CaptureStack(addresses.data(), addresses.size());
    }
    addresses.resize(count);

    ThreadStack stack;
    stack.threadId = CurrentThreadId();
    stack.answer = ThreadStack::Answer::Given;
    stack.isComplete = count < MaxFrames;
    auto const found =
        std::find(addresses.begin(), addresses.end(), reinterpret_cast<std::uintptr_t>(innermost));
    for (auto it = found == addresses.end() ? addresses.begin() : found; it != addresses.end(); ++it)
        stack.frames.push_back({*it, false});
    return stack;
}

std::vector<ThreadStack> WalkThreads(std::vector<unsigned> const &threadIds, ThreadAccess access)
{
    std::lock_guard const lock(g_walk);
    Storages storages;
    storages.reserve(threadIds.size());
    for (unsigned const id : threadIds)
        storages.push_back(StackStorage::Map(id));

    Clock::TimePoint const deadline = Clock::Now() + std::chrono::seconds(1);
    if (access != ThreadAccess::Signal)
        WalkByAttaching(storages, deadline);
    if (access == ThreadAccess::Automatic)
        ReplaceState(storages, StackStorage::Refused, StackStorage::Asked);
    if (access != ThreadAccess::Attach)
        WalkBySignal(storages, deadline);

    std::vector<ThreadStack> stacks(threadIds.size());
    for (std::size_t i = 0; i < stacks.size(); ++i)
    {
        stacks[i].threadId = threadIds[i];
        stacks[i].answer = ThreadStack::Answer::None;
        if (storages[i])
            stacks[i] = storages[i]->Stack();
    }
    return stacks;
}

bool LoadModules(std::string const &)
{
    return true; // which modules there are is found out at each look-up
}

} // namespace vansys::detail
