/// @file
/// ExceptionStacks: the call stacks that exceptions have captured.
#pragma once

#include "vansys/Forward.h"
#include "vansys/TCapturedStack.h"

#include <atomic>
#include <cstddef>

namespace vansys::detail
{

/// A table beside the exceptions, by their addresses: their layout is the interface's, and those that have no
/// call stack are to pay nothing for the others.
///
/// The two questions are one relaxed load each. That is enough: whoever destroys or copies an exception that
/// has a call stack has been told of it by the thread that made it, and so sees that there is one.
class ExceptionStacks
{
public:
    static void SwitchOn(bool isOn) noexcept { s_isOn.store(isOn, std::memory_order_relaxed); }

    static bool IsOn() noexcept { return s_isOn.load(std::memory_order_relaxed); }

    /// Whether any exception may have a call stack.
    static bool AreThere() noexcept { return s_count.load(std::memory_order_relaxed) != 0; }

    // None of these fails: without memory, there is no call stack.

    static void Capture(VantrelException const &exception, void const *returnAddress) noexcept;

    /// Afterwards, both exceptions have the call stack of `from`, if any.
    static void Copy(VantrelException const &from, VantrelException const &to) noexcept;

    static void Remove(VantrelException const &exception) noexcept;

    static TCapturedStack Find(VantrelException const &exception) noexcept;

private:
    inline static constinit std::atomic<bool> s_isOn{false};
    inline static constinit std::atomic<std::size_t> s_count{0};
};

} // namespace vansys::detail
