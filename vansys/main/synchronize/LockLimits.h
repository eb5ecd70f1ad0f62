/// @file
/// How many readers and writers a lock can count, and what happens at the limit.
#pragma once

#include "vansys/ThrowLogicException.h"

#include <cstdint>
#include <limits>

namespace vansys::detail
{

/// Counts are kept in 16 bits, and stay below what these can hold.
using LockCount = std::uint16_t;

inline constexpr LockCount MaxLockCount = std::numeric_limits<LockCount>::max() - 1;

inline void ReportTooManyReaders()
{
    ThrowLogicException("vansys/main/synchronize/TLocks", 253,
                        "m_readerCount < std::numeric_limits<decltype(m_readerCount)>::max()");
}

inline void ReportTooManyWriters()
{
    ThrowLogicException("vansys/main/synchronize/TLocks", 232,
                        "m_writerCount < std::numeric_limits<decltype(m_writerCount)>::max()");
}

} // namespace vansys::detail
