#include "support/SleepingThread.h"

#include <chrono>

void SleepingThread::WaitUntilAsleep() const
{
    while (m_id == 0)
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

long SleepingThread::Begin()
{
    return 1;
}
