#include "support/DebugOutput.h"

#include <windows.h>

namespace
{

std::string *g_output = nullptr;

/// A message for a debugger is an exception that carries its length and its address.
LONG CALLBACK collectMessage(EXCEPTION_POINTERS *pointers)
{
    EXCEPTION_RECORD const &record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != DBG_PRINTEXCEPTION_C)
        return EXCEPTION_CONTINUE_SEARCH;
    *g_output += reinterpret_cast<char const *>(record.ExceptionInformation[1]);
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

std::string debugOutputOf(std::function<void()> const &function)
{
    std::string output;
    g_output = &output;
    void *const handler = AddVectoredExceptionHandler(1, collectMessage);
    function();
    RemoveVectoredExceptionHandler(handler);
    g_output = nullptr;
    return output;
}
