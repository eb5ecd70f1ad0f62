/// @file
/// Makes allocations fail, in a program that is linked with FailingAllocations.cpp.
#pragma once

#include <functional>

/// Runs the operation with the n-th allocation failing, for n = 0, 1, ... until it gets through.
/// `check` is called after each failure. Returns the number of failures.
int failEachAllocation(std::function<void()> const &prepare, std::function<void()> const &operation,
                       std::function<void()> const &check);
