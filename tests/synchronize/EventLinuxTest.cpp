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

TEST(EventFutex, IsNotCalledWhileNobodyWaits)
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
    }
}

TEST(EventFutex, IsCalledOnceToWake)
{
    TEvent manual;
    TAutoResetEvent automatic;
    for (IEvent *event : {static_cast<IEvent *>(&manual), static_cast<IEvent *>(&automatic)})
    {
        SleepingThread const thread([event] { event->Wait(); });
        thread.WaitUntilAsleep();
        FutexCalls const calls;
        event->Signal();
        EXPECT_EQ(calls.Count(), 1);
    }
}
