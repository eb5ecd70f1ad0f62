#include "support/SleepingThread.h"

#include <chrono>
#include <fstream>
#include <pthread.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

void SleepingThread::WaitUntilAsleep() const
{
    // A sanitizer may put a thread to sleep for a moment; seen so several times in a row, it is the function.
    for (int sightings = 0; sightings < 3;)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        long const id = m_id;
        std::ifstream file("/proc/self/task/" + std::to_string(id) + "/stat");
        std::string line;
        std::getline(file, line);
        // The state comes after the name, which is in parentheses and may contain anything.
        std::size_t const nameEnd = line.rfind(") ");
        bool const isAsleep = id != 0 && nameEnd != std::string::npos && line[nameEnd + 2] == 'S';
        sightings = isAsleep ? sightings + 1 : 0;
    }
}

long SleepingThread::Begin()
{
    // A thread that is woken must not interrupt the one that woke it: that one may be about to take back what
    // it was woken for, and has to get the chance.
    sched_param const parameters{};
    pthread_setschedparam(pthread_self(), SCHED_BATCH, &parameters);
    return syscall(SYS_gettid);
}
