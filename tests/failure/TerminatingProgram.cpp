// Ends in the way that its argument says.

#include "vansys/TFormatStringCore.h"
#include "vansys/TTerminateHandler.h"
#include "vansys/VantrelOutOfMemoryException.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>

using Messages = TTerminateHandler::Messages;
using CallStack = TTerminateHandler::CallStack;

[[noreturn]] static void ThrowMessages()
{
    VantrelException exception(TFormatStringCore("cannot open %1").arg("secret"));
    exception.StackMessage("plain");
    throw exception;
}

static void OnEnd()
{
    std::puts("the handler before");
    std::exit(9);
}

static void Print(void *context, char const *text, std::size_t size)
{
    std::printf("%s%.*s", static_cast<char const *>(context), static_cast<int>(size), text);
    std::fflush(stdout);
    throw std::runtime_error("of the output");
}

int main(int, char **arguments)
{
    std::string const way = arguments[1];
    std::set_terminate(&OnEnd);
    char mark[] = "<";
    if (way == "redacted")
        TTerminateHandler::Install({.messages = Messages::Redacted, .callStack = CallStack::Hidden});
    else if (way == "output")
        TTerminateHandler::Install({.callStack = CallStack::Hidden, .output = &Print, .context = mark});
    else
        TTerminateHandler::Install({.messages = Messages::Both});
    VantrelException::CaptureCallStacks(way == "captured" || way == "threads");

    if (way == "standard")
        throw std::out_of_range("the standard one");
    if (way == "unknown")
        throw 1;
    if (way == "none")
        std::terminate();
    if (way == "memory")
        throw VantrelOutOfMemoryException();
    if (way == "removed")
        TTerminateHandler::Remove();
    if (way == "threads")
        std::thread([]() noexcept { ThrowMessages(); }).detach();
    ThrowMessages();
}
