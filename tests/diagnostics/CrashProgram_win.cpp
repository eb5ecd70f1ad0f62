#include "diagnostics/CrashProgram.h"

#include <windows.h>

namespace
{

LONG WINAPI EndAtOnce(EXCEPTION_POINTERS *)
{
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

std::span<CrashKind const> SystemCrashKinds()
{
    return {};
}

void PrepareSystem()
{
    // No debugger starts, and nobody is asked.
    SetUnhandledExceptionFilter(&EndAtOnce);
}

void ApplySystemOption(std::string_view, TCrashHandler::Options &) {}
