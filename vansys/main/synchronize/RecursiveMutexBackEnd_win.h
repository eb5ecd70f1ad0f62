/// @file
/// RecursiveMutexBackEnd of Windows: its critical section.
#pragma once

#include "main/platform/CriticalSection.h"

namespace vansys::detail
{

class RecursiveMutexBackEnd
{
public:
    void Lock() noexcept { m_section.lock(); }
    bool TryLock() noexcept { return m_section.try_lock(); }
    void Unlock() noexcept { m_section.unlock(); }

private:
    CriticalSection m_section;
};

} // namespace vansys::detail
