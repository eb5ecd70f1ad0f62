/// @file
/// Telling whether two pieces of code run on the same thread, at the cost of an addition.
#pragma once

namespace vansys::detail
{

/// Differs for any two threads that exist at the same time; is never null. A thread that starts after another
/// has ended may get the identity of that one.
using ThreadIdentity = void const *;

// The address of a thread's own copy of a variable. It stays what it is for the child of a fork, where a
// number that the system gives to threads would be that of a thread in the other process. The access model
// spares a call at each use, and takes one byte of the room that programs keep for libraries loaded late.
[[gnu::tls_model("initial-exec")]] inline thread_local constinit char t_threadMark = 0;

inline ThreadIdentity CurrentThreadIdentity() noexcept
{
    return &t_threadMark;
}

} // namespace vansys::detail
