/// @file
/// From ICU's string class to the library's own.
#pragma once

#include "vansys/TStringCore.h"

#include "main/icu/Call.h"

#include <unicode/unistr.h>

namespace vansys::detail
{

/// A copy of the text; the empty text for a bogus one. Throws `TStringCore::Exception`.
inline TStringCore ToText(icu::UnicodeString const &text)
{
    return TStringCore(As<TCodeUnit const *>(text.getBuffer()), text.length());
}

} // namespace vansys::detail
