/// @file
/// The atomics of the protocols by which threads wait for each other.
#pragma once

#include <atomic>

namespace vansys::detail
{

/// What locks, semaphores and events are made of. They name it, and not the type of the standard library, so
/// that they can be compiled with another one that a test decides about: which thread goes next, and which of
/// the values that the memory order allows a load finds.
template <class T>
using Atomic = std::atomic<T>;

} // namespace vansys::detail
