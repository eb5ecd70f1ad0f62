#include "vansys/AssertHooks.h"
#include "vansys/ThrowLogicException.h"
#include "vansys/VantrelException.h"

#include "main/platform/DebugOutput.h"

#include <atomic>
#include <string>

namespace
{

std::atomic<AssertHooks::Hook> g_logicAssertHook{nullptr};
std::atomic<AssertHooks::Hook> g_debugAssertHook{nullptr};

std::string OrEmpty(char const *text)
{
    return text ? text : "";
}

} // namespace

void AssertHooks::SetLogicAssertHook(Hook hook)
{
    g_logicAssertHook.store(hook, std::memory_order_release);
}

void AssertHooks::SetDebugAssertHook(Hook hook)
{
    g_debugAssertHook.store(hook, std::memory_order_release);
}

void ThrowLogicException(char const *file, int line, char const *expression)
{
    if (AssertHooks::Hook const hook = g_logicAssertHook.load(std::memory_order_acquire))
    {
        hook(file, line, expression);
        return;
    }
    std::string const message = "LogicAssert failed (but no hook has been set) at " + OrEmpty(file) +
                                " line " + std::to_string(line) + ": " + OrEmpty(expression);
    vansys::detail::WriteDebugOutput(message.c_str());
    throw VantrelException(TStringCore::fromStdString(message));
}
