// When events call the kernel.

#include "vansys/TAutoResetEvent.h"
#include "vansys/TCancelEvent.h"
#include "vansys/TCountdownEvent.h"
#include "vansys/TEvent.h"
#include "vansys/WaitForEvents.h"

#include "support/FutexCalls.h"
#include "support/SleepingThread.h"

#include <gtest/gtest.h>

#include <chrono>

TEST(EventFutex, IsCalledOnlyToWakeAThread)
{
    using namespace std::chrono_literals;
    TEvent manual;
    TAutoResetEvent automatic;
    TCountdownEvent countdown(1);
    TCancelEvent cancel;
    for (IEvent *event : {static_cast<IEvent *>(&manual), static_cast<IEvent *>(&automatic),
                          static_cast<IEvent *>(&countdown), static_cast<IEvent *>(&cancel)})
    {
        EXPECT_FALSE(event->Wait(1ms)); // a wait that has given up is none any more
        FutexCalls const calls;
        for (int i = 0; i < 1000; ++i)
        {
            event->AddOnSignalCallback(&manual, [] {});
            event->Signal();
            event->RemoveOnSignalCallback(&manual);
            EXPECT_TRUE(event->IsSet());
            event->Reset();
            event->Signal();
            EXPECT_TRUE(event->Wait());
            event->Reset();
            WaitForAny({event}, 0ms);
        }
        EXPECT_EQ(calls.Count(), 0);
        SleepingThread const thread([event] { event->Wait(); });
        thread.WaitUntilAsleep();
        FutexCalls const callsToWake;
        event->Signal();
        EXPECT_EQ(callsToWake.Count(), 1);
    }
}

// The thread is released when it has slept for long enough, but still is among those who wait.
TEST(EventFutex, SignalAtTheTimeLimitIsNotLost)
{
    TAutoResetEvent const event;
    FutexCalls::AtNextTimeLimit([&event] { event.Signal(); });
    EXPECT_TRUE(event.Wait(std::chrono::milliseconds(1)));
    EXPECT_FALSE(event.IsSet());
}
