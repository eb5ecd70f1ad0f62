// What waits by futexes, in every order of its steps.

#include "explorer/Scheduler.h"

#include "vansys/ThrowLogicException.h"

#include "main/synchronize/EventBackEnd.h"
#include "main/synchronize/ReadWriteLockBackEnd_linux.h"
#include "main/synchronize/RecursiveMutexBackEnd_linux.h"
#include "main/synchronize/SemaphoreBackEnd_linux.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>

using namespace explorer;
using namespace vansys::detail;

// No program gets to where this is called.
void ThrowLogicException(char const *, int, char const *)
{
    std::abort();
}

namespace
{

template <class T, class... Arguments>
T *MakeIn(Memory &memory, Arguments... arguments)
{
    static_assert(sizeof(T) <= sizeof memory);
    return new (memory.data()) T(arguments...);
}

template <class Lock>
Object MakeLock(Memory &memory)
{
    return [lock = MakeIn<Lock>(memory)](std::string_view call, std::uint32_t)
    {
        if (call == "TryLock")
            return lock->TryLock();
        if (call == "Lock")
            lock->Lock();
        else if (call == "Unlock")
            lock->Unlock();
        else if constexpr (requires { lock->LockRead(); })
        {
            if (call == "TryLockRead")
                return lock->TryLockRead();
            call == "LockRead" ? lock->LockRead() : lock->UnlockRead();
        }
        return true;
    };
}

Object MakeSemaphore(Memory &memory)
{
    return [semaphore = MakeIn<SemaphoreBackEnd>(memory)](std::string_view call, std::uint32_t milliseconds)
    {
        if (call == "TryAcquire" || call == "AcquireFor")
            return semaphore->TryAcquire(call == "AcquireFor" ? milliseconds : 0);
        return (call == "Acquire" ? semaphore->Acquire() : semaphore->Release()) == NoError;
    };
}

template <EventReset Reset>
Object MakeEvent(Memory &memory)
{
    return [event = MakeIn<EventBackEnd>(memory, Reset)](std::string_view call, std::uint32_t milliseconds)
    {
        if (call == "Wait")
            return event->Wait(EventBackEnd::Infinite);
        if (call == "WaitFor" || call == "Look")
            return event->Wait(call == "Look" ? 0 : milliseconds);
        call == "Set" ? event->Set() : event->Reset();
        return true;
    };
}

Subject const Subjects[] = {
    {"RecursiveMutex",
     MakeLock<RecursiveMutexBackEnd>,
     MutexRules,
     "TryLock",
     {"Lock Unlock | Lock Unlock | Lock Unlock", "Lock Lock Unlock Unlock | Lock Unlock | TryLock Unlock",
      "Lock Unlock Lock Unlock | Lock Unlock"}},
    {"ReadWriteLock",
     MakeLock<ReadWriteLockBackEnd>,
     ReadWriteLockRules,
     "TryLock",
     {"Lock Unlock | Lock Unlock | Lock Unlock", "Lock Unlock | Lock Unlock | LockRead UnlockRead",
      "Lock Unlock | LockRead UnlockRead | LockRead UnlockRead",
      "Lock LockRead Unlock UnlockRead | Lock Unlock | TryLockRead UnlockRead",
      "Lock Lock Unlock Unlock | LockRead UnlockRead | TryLock Unlock"},
     3}, // the counts of wake-ups may lose one of two, as long as they move
    {"Semaphore",
     MakeSemaphore,
     SemaphoreRules,
     "TryAcquire",
     {"Acquire | Acquire | Release Release", "Acquire Release | Acquire | Release",
      "AcquireFor | Acquire | Release", "AcquireFor Release | AcquireFor Release | Release TryAcquire",
      "Acquire Acquire | Release | Release", "Release TryAcquire | Release TryAcquire"}},
    {"ManualResetEvent",
     MakeEvent<EventReset::Manual>,
     ManualResetRules,
     "Look",
     {"Wait | Wait | Set Reset", "Wait | WaitFor | Set Reset", "Wait Wait | Set Reset | Set Reset",
      "WaitFor Look | Set Reset Look | Set", "Wait | Reset Set"}},
    {"AutoResetEvent",
     MakeEvent<EventReset::Auto>,
     AutoResetRules,
     "Look",
     {"Wait | Set Reset WaitFor", "Wait | Wait | Set Set", "Wait | Wait Set | Set",
      "Wait | WaitFor | Set Reset", "WaitFor Look | Set Reset | Set", "Wait | Reset Set"}},
};

using Explorer = testing::TestWithParam<Subject>;

} // namespace

TEST_P(Explorer, FindsNoFaultButEachPlantedOne)
{
    Subject const &subject = GetParam();
    std::set<Plant> plants;
    for (char const *const program : subject.programs)
    {
        Findings findings = Explore(subject, program);
        std::printf("%s: %zu states\n", program, findings.states);
        EXPECT_TRUE(findings.failure.empty()) << program << ": " << findings.failure;
        plants.merge(findings.plants);
    }
    auto const isFound = [&](Plant const &plant)
    {
        return std::ranges::any_of(subject.programs, [&](char const *program)
                                   { return !Explore(subject, program, plant).failure.empty(); });
    };
    auto const found = std::erase_if(plants, isFound);
    std::printf("found %zu of %zu planted faults\n", found, found + plants.size());
    EXPECT_EQ(plants.size(), subject.harmlessPlants);
    for (auto const &[fault, site] : plants)
        std::printf("not found: %s:%d %s\n", site.file, site.line, fault);
}

INSTANTIATE_TEST_SUITE_P(, Explorer, testing::ValuesIn(Subjects),
                         [](auto const &subject) { return std::string(subject.param.name); });
