/// @file
/// What the back ends of TSemaphore have in common.
#pragma once

#include <cstdint>

namespace vansys::detail
{

/// A semaphore never has more units.
inline constexpr std::uint32_t MaxSemaphoreCount = 0x7FFFFFFF;

/// As a number of milliseconds: waits without limit.
inline constexpr std::uint32_t NoTimeLimit = 0xFFFFFFFF;

/// What the operating system calls a failure.
using SystemError = std::uint32_t;

inline constexpr SystemError NoError = 0;

} // namespace vansys::detail
