/// @file
/// The names that the system has for a file.
#pragma once

#include "vansys/TStringCore.h"

namespace vansys::detail
{

enum class NameForm
{
    Long,
    Short ///< of eight and three characters, where the system keeps such names
};

enum class NameAnswer
{
    Known,
    NoSuchFile, ///< or no such folder on the way to it
    Failed
};

/// Asks for the form of every name in a path, which is in the native form, has no zero unit, and begins with
/// "\\?\" as a rule. `text` receives the path in that form; it is left alone unless the answer is `Known`.
NameAnswer AskNativeName(NameForm form, TStringCore const &native, TStringCore &text);

} // namespace vansys::detail
