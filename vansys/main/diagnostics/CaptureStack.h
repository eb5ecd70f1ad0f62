/// @file
/// CaptureStack: the return addresses of the calling thread.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vansys::detail
{

/// Writes the return addresses on the stack of the calling thread to `addresses`, the innermost first: at
/// most `capacity` of them, after the first `skip` were left out. The first one of all lies in the function
/// that calls this. Of a function that a signal has interrupted, it is the address one byte behind its
/// instruction, and the frame of the signal trampoline is left out. Returns how many were written.
///
/// Allocates nothing and takes no lock of the library, so that whoever throws, counts allocations or holds a
/// lock may call it.
std::size_t CaptureStack(std::uintptr_t *addresses, std::size_t capacity, std::size_t skip = 0) noexcept;

} // namespace vansys::detail
