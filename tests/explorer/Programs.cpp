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
#include <memory>

using namespace explorer;
using namespace vansys::detail;

// No program gets to where this is called.
void ThrowLogicException(char const *, int, char const *)
{
    std::abort();
}

namespace
{

template <class Lock>
Object MakeLock()
{
    return [lock = std::make_shared<Lock>()](std::string_view call, std::uint32_t)
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

Object MakeSemaphore()
{
    return
        [semaphore = std::make_shared<SemaphoreBackEnd>()](std::string_view call, std::uint32_t milliseconds)
    {
        if (call == "TryAcquire" || call == "AcquireFor")
            return semaphore->TryAcquire(call == "AcquireFor" ? milliseconds : 0);
        return (call == "Acquire" ? semaphore->Acquire() : semaphore->Release()) == NoError;
    };
}

template <EventReset Reset>
Object MakeEvent()
{
    return [event = std::make_shared<EventBackEnd>(Reset)](std::string_view call, std::uint32_t milliseconds)
    {
        if (call == "Wait")
            return event->Wait(EventBackEnd::Infinite);
        if (call == "WaitFor" || call == "Look")
            return event->Wait(call == "Look" ? 0 : milliseconds);
        if (call == "Set")
            event->Set();
        else
            event->Reset();
        return true;
    };
}

Subject const Subjects[] = {
    {"RecursiveMutex",
     MakeLock<RecursiveMutexBackEnd>,
     MutexRules,
     "TryLock",
     {
         "Lock Unlock | Lock Unlock | Lock Unlock",
         "Lock Lock Unlock Unlock | Lock Unlock | TryLock Unlock",
         "Lock Unlock Lock Unlock | Lock Unlock",
     },
     0},
    {"ReadWriteLock",
     MakeLock<ReadWriteLockBackEnd>,
     ReadWriteLockRules,
     "TryLock",
     {
         "Lock Unlock | Lock Unlock | Lock Unlock",
         "Lock Unlock | Lock Unlock | LockRead UnlockRead",
         "Lock Unlock | LockRead UnlockRead | LockRead UnlockRead",
         "Lock LockRead Unlock UnlockRead | Lock Unlock | TryLockRead UnlockRead",
         "Lock Lock Unlock Unlock | LockRead UnlockRead | TryLock Unlock",
     },
     3}, // the counts of wake-ups may lose one of two, as long as they move
    {"Semaphore",
     MakeSemaphore,
     SemaphoreRules,
     "TryAcquire",
     {
         "Acquire | Acquire | Release Release",
         "Acquire Release | Acquire | Release",
         "AcquireFor | Acquire | Release",
         "AcquireFor Release | AcquireFor Release | Release TryAcquire",
         "Acquire Acquire | Release | Release",
         "Release TryAcquire | Release TryAcquire",
     },
     0},
    {"ManualResetEvent",
     MakeEvent<EventReset::Manual>,
     ManualResetRules,
     "Look",
     {
         "Wait | Wait | Set Reset",
         "Wait | WaitFor | Set Reset",
         "Wait Wait | Set Reset | Set Reset",
         "WaitFor Look | Set Reset Look | Set",
         "Wait | Reset Set",
     },
     0},
    {"AutoResetEvent",
     MakeEvent<EventReset::Auto>,
     AutoResetRules,
     "Look",
     {
         "Wait | Set Reset WaitFor",
         "Wait | Wait | Set Set",
         "Wait | Wait Set | Set",
         "Wait | WaitFor | Set Reset",
         "WaitFor Look | Set Reset | Set",
         "Wait | Reset Set",
     },
     0},
};

class Explorer : public testing::TestWithParam<Subject>
{
};

} // namespace

TEST_P(Explorer, FindsNoFaultButEachPlantedOne)
{
    Subject const &subject = GetParam();
    std::vector<Plant> plants;
    for (char const *const program : subject.programs)
    {
        Findings const findings = Scheduler(subject, program).Explore();
        std::printf("%s: %zu states, %zu executions\n", program, findings.states, findings.executions);
        EXPECT_TRUE(findings.failure.empty()) << program << ": " << findings.failure;
        for (Plant const &plant : findings.plants)
        {
            if (std::find(plants.begin(), plants.end(), plant) == plants.end())
                plants.push_back(plant);
        }
    }
    std::string missed;
    std::size_t missedCount = 0;
    for (Plant const &plant : plants)
    {
        auto const finds = [&](char const *program)
        { return !Scheduler(subject, program, plant).Explore().failure.empty(); };
        if (std::any_of(subject.programs.begin(), subject.programs.end(), finds))
            continue;
        ++missedCount;
        missed += std::to_string(static_cast<int>(plant.fault)) + " at " + plant.site.file + ":" +
                  std::to_string(plant.site.line) + "\n";
    }
    std::printf("found %zu of %zu planted faults\n", plants.size() - missedCount, plants.size());
    EXPECT_EQ(missedCount, subject.harmlessPlants) << missed;
}

INSTANTIATE_TEST_SUITE_P(, Explorer, testing::ValuesIn(Subjects),
                         [](auto const &subject) { return std::string(subject.param.name); });
