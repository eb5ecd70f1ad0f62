/// @file
/// How often the library has called the kernel to sleep or to wake. Linux only, for programs that are linked
/// with --wrap=syscall.
#pragma once

#include <functional>

/// Counts the calls since it was created, of all threads.
class FutexCalls
{
public:
    FutexCalls();

    int Count() const;

    /// Has `function` called once: when the next time limit has passed, by the thread that was asleep.
    static void AtNextTimeLimit(std::function<void()> function);

private:
    int m_before;
};
