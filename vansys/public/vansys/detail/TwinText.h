/// @file
/// Text of the other wide type as units, and positions there and back.
#pragma once

#include "vansys/Export.h"
#include "vansys/TCodeUnit.h"
#include "vansys/detail/StringStorage.h"

namespace vansys::detail
{

/// Zero-terminated or counted text of `TWideTwin` elements, as code units. Where the twin has the size of a
/// code unit it is looked at as it is, else it is transcoded. Refers to the text, which must outlive it.
class VANSYS_API TwinText
{
public:
    /// A negative length means "up to the first zero". Throws `TStringCore::Exception` as the string does.
    explicit TwinText(TWideTwin const *text, int length = -1);

    TwinText(TwinText const &) = delete;
    TwinText &operator=(TwinText const &) = delete;

    /// Null where the text is null. Zero-terminated where the text is.
    TCodeUnit const *units() const noexcept { return m_units; }

    /// In units.
    int length() const noexcept { return m_length; }

    /// The position in the text of the element that gave the unit at `unit`. -1 stays -1.
    int position(int unit) const noexcept;

    /// The position of the first unit of the element at `position`. A negative position stays as it is; one
    /// beyond the end stays beyond the end.
    int unitPosition(int position) const noexcept;

private:
    TWideTwin const *m_text;
    int m_count; ///< elements of the text
    TCodeUnit const *m_units;
    int m_length;
    StringStorage m_transcoded;
};

} // namespace vansys::detail
