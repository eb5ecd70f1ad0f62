/// @file
/// How often the library has called the kernel to sleep or to wake. Linux only, for programs that are linked
/// with --wrap=syscall.
#pragma once

/// Counts the calls since it was created, of all threads.
class FutexCalls
{
public:
    FutexCalls();

    int Count() const;

private:
    int m_before;
};
