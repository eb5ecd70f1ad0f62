/// @file
/// What the library says to the debugger, caught.
#pragma once

#include <functional>
#include <string>

/// Calls the function and returns what was written to the debugger output meanwhile. On Linux that is all of
/// standard error.
std::string debugOutputOf(std::function<void()> const &function);
