/// @file
/// Where a program speaks to the person who debugs it.
#pragma once

namespace vansys::detail
{

/// Writes a message to the debugger output: the debugger's own on Windows, a line on standard error
/// elsewhere. `message` is zero-terminated UTF-8. Never fails. Messages of several threads are not mixed.
void WriteDebugOutput(char const *message) noexcept;

} // namespace vansys::detail
