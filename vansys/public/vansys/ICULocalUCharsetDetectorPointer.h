/// @file
/// ICULocalUCharsetDetectorPointer: owns a charset detector.
#pragma once

#include "vansys/ICUConverterFunctions.h"

#include <utility>

namespace VanICU
{

/// Closes a charset detector when it goes out of scope.
///
///     ICULocalUCharsetDetectorPointer detector(t_ucsdet_open(&status));
///     t_ucsdet_setText(detector.getAlias(), bytes, count, &status);
class ICULocalUCharsetDetectorPointer
{
public:
    /// Takes over the handle, which may be null.
    explicit ICULocalUCharsetDetectorPointer(ICUCharsetDetector *detector) noexcept : m_detector(detector) {}

    ICULocalUCharsetDetectorPointer(ICULocalUCharsetDetectorPointer &&other) noexcept
        : m_detector(other.orphan())
    {
    }

    ICULocalUCharsetDetectorPointer &operator=(ICULocalUCharsetDetectorPointer &&other) noexcept
    {
        ICULocalUCharsetDetectorPointer taken(std::move(other));
        std::swap(m_detector, taken.m_detector);
        return *this;
    }

    ICULocalUCharsetDetectorPointer(ICULocalUCharsetDetectorPointer const &) = delete;
    ICULocalUCharsetDetectorPointer &operator=(ICULocalUCharsetDetectorPointer const &) = delete;

    ~ICULocalUCharsetDetectorPointer() { t_ucsdet_close(m_detector); }

    /// The handle, which stays owned; null when there is none.
    ICUCharsetDetector *getAlias() const noexcept { return m_detector; }

    /// Gives the handle up to the caller.
    ICUCharsetDetector *orphan() noexcept { return std::exchange(m_detector, nullptr); }

private:
    ICUCharsetDetector *m_detector;
};

} // namespace VanICU
