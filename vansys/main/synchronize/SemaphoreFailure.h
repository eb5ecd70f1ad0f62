/// @file
/// What the back ends of TSemaphore report.
#pragma once

#include <cstdint>

namespace vansys::detail
{

/// A semaphore never has more units.
inline constexpr std::uint32_t MaxSemaphoreCount = 0x7FFFFFFF;

// The messages; the marker is for the error code of the operating system.
inline constexpr char SemaphoreConstructFailed[] = "TSemaphore::Construct: error=%1";
inline constexpr char SemaphoreAcquireFailed[] = "TSemaphore::Acquire: error=%1";
inline constexpr char SemaphoreReleaseFailed[] = "TSemaphore::Release: error=%1";

/// Throws `VantrelException` with one of the messages.
[[noreturn]] void ThrowSemaphoreFailure(char const *format, std::uint32_t error);

} // namespace vansys::detail
