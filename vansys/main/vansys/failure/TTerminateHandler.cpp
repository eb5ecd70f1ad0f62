#include "vansys/TTerminateHandler.h"

#include "vansys/TCapturedStack.h"
#include "vansys/VantrelException.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <list>
#include <memory>
#include <string_view>
#include <thread>
#include <typeinfo>

#include <cxxabi.h>
#include <unistd.h>

namespace
{

TTerminateHandler::Options g_options;
std::terminate_handler g_previous = nullptr;
std::atomic<bool> g_isActive{false};
std::atomic<bool> g_isReporting{false};

/// Whether this thread is at its report: should that end in `std::terminate`, there is not to be another one.
thread_local bool t_isReporting = false;

void Write(std::string_view text)
{
    if (g_options.output)
    {
        g_options.output(g_options.context, text.data(), text.size());
        return;
    }
    while (!text.empty())
    {
        auto const written = write(g_options.descriptor, text.data(), static_cast<unsigned>(text.size()));
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
        else if (written == 0 || errno != EINTR)
            return;
    }
}

/// Writes a part of the report; what it throws for want of memory, or the host's output throws, ends this
/// part only.
template <class Part>
void WritePart(Part part) noexcept
{
    try
    {
        part();
    }
    catch (...)
    {
        // There is nobody left to be told.
    }
}

void WriteLine(std::string_view text)
{
    Write(text);
    if (!text.ends_with('\n'))
        Write("\n");
}

void WriteMessages(std::string_view title, std::list<TStringCore> const &messages)
{
    if (messages.empty())
        return;
    WriteLine(title);
    for (TStringCore const &message : messages)
        WritePart([&] { WriteLine(message.toStdString()); });
}

void WriteMessages(VantrelException const &exception)
{
    if (g_options.messages != TTerminateHandler::Messages::Redacted)
        WriteMessages("Messages:", exception.GetMessages());
    if (g_options.messages != TTerminateHandler::Messages::Full)
        WriteMessages("Redacted messages:", exception.GetRedactedMessages());
}

/// What there is to say about the exception that is being handled.
void WriteMessages(TCapturedStack &stack)
{
    try
    {
        throw;
    }
    catch (VantrelException const &exception)
    {
        stack = exception.CallStack();
        WriteMessages(exception);
    }
    catch (std::exception const &exception)
    {
        if (g_options.messages != TTerminateHandler::Messages::Redacted)
        {
            WriteLine("Messages:");
            WriteLine(exception.what());
        }
    }
}

/// Where the exception has no call stack, the thread's is shown from the frame on that the address returns
/// to.
void WriteReport(void const *returnAddress) noexcept
{
    std::type_info const *const type = abi::__cxa_current_exception_type();
    TCapturedStack stack;
    if (type)
    {
        WritePart(
            [type]
            {
                Write("Ended by ");
                int status = 0;
                std::unique_ptr<char, decltype(&std::free)> const name(
                    abi::__cxa_demangle(type->name(), nullptr, nullptr, &status), &std::free);
                WriteLine(name ? name.get() : type->name());
            });
        WritePart([&stack] { WriteMessages(stack); });
    }
    else
        WritePart([] { WriteLine("Ended without an exception"); });
    if (g_options.callStack == TTerminateHandler::CallStack::Shown)
    {
        if (stack.IsEmpty())
            stack = TCapturedStack::CaptureFrom(returnAddress);
        WritePart([] { WriteLine("Call stack:"); });
        WritePart([&stack] { Write(stack.Text()); });
    }
}

/// Lets threads report one after the other. The first one ends the process, so that the others wait for that;
/// not for ever, should it hang.
void WaitForTurn() noexcept
{
    constexpr auto Step = std::chrono::milliseconds(10);
    constexpr auto Limit = std::chrono::seconds(10);
    auto waited = std::chrono::milliseconds::zero();
    while (g_isReporting.exchange(true) && waited < Limit)
    {
        std::this_thread::sleep_for(Step);
        waited += Step;
    }
}

[[noreturn]] void OnTerminate() noexcept
{
    if (g_isActive.load(std::memory_order_acquire) && !t_isReporting)
    {
        t_isReporting = true;
        WaitForTurn();
        WriteReport(__builtin_return_address(0));
    }
    if (g_previous && g_previous != &__gnu_cxx::__verbose_terminate_handler)
        g_previous();
    std::abort();
}

} // namespace

void TTerminateHandler::Install(Options const &options) noexcept
{
    g_options = options;
    if (std::get_terminate() != &OnTerminate)
        g_previous = std::set_terminate(&OnTerminate);
    g_isActive.store(true, std::memory_order_release);
}

void TTerminateHandler::Remove() noexcept
{
    if (std::get_terminate() == &OnTerminate)
        std::set_terminate(g_previous);
    g_isActive.store(false, std::memory_order_release);
}
