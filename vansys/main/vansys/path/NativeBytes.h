/// @file
/// Names as the functions of the host's C library take them.
#pragma once

#include "vansys/TStringCore.h"

#include <string>
#include <string_view>

namespace vansys::detail
{

/// The text of a path, generic where the host is; see `TPathCore::fromNativeBytes`.
TStringCore DecodeNativeBytes(std::string_view bytes);

/// The reverse; takes generic text, and native one, too.
std::string EncodeNativeBytes(TStringCore const &text);

/// The text with the host's own separator.
TStringCore TextForHost(TStringCore const &text);

} // namespace vansys::detail
