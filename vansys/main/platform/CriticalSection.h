/// @file
/// The owner of a critical section of Windows. Windows only.
#pragma once

#include "main/platform/Windows.h"

namespace vansys::detail
{

/// Recursive: the thread that has entered may enter again. Fits the guards of the standard library.
class CriticalSection
{
public:
    CriticalSection() noexcept { InitializeCriticalSectionEx(&m_section, SpinCount, 0); }

    CriticalSection(CriticalSection const &) = delete;
    CriticalSection &operator=(CriticalSection const &) = delete;

    ~CriticalSection() { DeleteCriticalSection(&m_section); }

    void lock() noexcept { EnterCriticalSection(&m_section); }
    bool try_lock() noexcept { return TryEnterCriticalSection(&m_section) != FALSE; }
    void unlock() noexcept { LeaveCriticalSection(&m_section); }

    /// For the functions that take the section itself.
    CRITICAL_SECTION *native_handle() noexcept { return &m_section; }

private:
    static constexpr DWORD SpinCount = 4000; // what the heaps of Windows use

    CRITICAL_SECTION m_section;
};

} // namespace vansys::detail
