// Crashes in the way that its arguments say: FOLDER KIND [OPTION...]
#include "diagnostics/CrashProgram.h"

#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{

// Functions are marked in the way of GNU, as Clang knows the marks of sanitizers only in that.

int *volatile g_null = nullptr;

__attribute__((noinline, no_sanitize("undefined", "address"))) void CrashOnNull()
{
    *g_null = 1;
}

__attribute__((noinline, no_sanitize("undefined", "address"))) int ExhaustStack(int depth)
{
    char volatile page[512];
    page[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : ExhaustStack(depth + 1) + page[0];
}

[[gnu::noinline]] void ThrowUncaught()
{
    throw std::runtime_error("nobody catches this");
}

[[gnu::noinline]] void Abort()
{
    std::abort();
}

void ExhaustStackOfThread()
{
    std::thread(
        []
        {
            TCrashHandler::ThreadScope const scope;
            if (scope)
                ExhaustStack(0);
        })
        .join();
}

void CrashTogether()
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back(&CrashOnNull);
    for (std::thread &thread : threads)
        thread.join();
}

constexpr CrashKind Kinds[] = {
    {"null", &CrashOnNull},
    {"stack", [] { ExhaustStack(0); }},
    {"thread-stack", &ExhaustStackOfThread},
    {"terminate", &ThrowUncaught},
    {"abort", [] { Abort(); }},
    {"together", &CrashTogether},
};

} // namespace

int main(int count, char **arguments)
{
    TCrashHandler::Options options;
    options.folder = arguments[1];
    bool isUninstalled = false;
    PrepareSystem();
    for (int i = 3; i < count; ++i)
    {
        std::string_view const option = arguments[i];
        options.writeDump = options.writeDump && option != "without-dump";
        isUninstalled = isUninstalled || option == "uninstalled";
        ApplySystemOption(option, options);
    }
    if (!TCrashHandler::Install(options) || TCrashHandler::Install(options))
        return 1;
    if (isUninstalled)
        TCrashHandler::Uninstall();
    for (std::span<CrashKind const> const kinds : {std::span<CrashKind const>(Kinds), SystemCrashKinds()})
        for (CrashKind const &kind : kinds)
            if (kind.name == arguments[2])
                kind.crash();
    return 2;
}
