/// @file
/// TTerminateHandler: what a process says when an exception ends it.
#pragma once

#include "vansys/Export.h"

#include <cstddef>

/// Reports what ends the process when nobody catches an exception, or when one leaves a `noexcept` function:
/// its type, its messages, and where it was made. For hosts that want it; nothing is installed by itself.
///
///     int main()
///     {
///         VantrelException::CaptureCallStacks(true);
///         TTerminateHandler::Install({});
///
/// A report reads
///
///     Ended by ParseException
///     Messages:
///     while reading the settings
///     line 12: no number
///     Call stack:
///     0x00000000 settings.cpp(88): server!ReadSettings
///     ...
///
/// Of a `VantrelException` it has the messages. Of a `std::exception`, what `what()` says is a message, and
/// has no redacted form; of other types nothing is known. The call stack is the one that the exception has
/// captured, or else that of the thread, which in most cases still is where the exception was thrown.
///
/// After the report, the handler that was there before runs, or the process is aborted, as the standard
/// library does. The compiler's own handler does not run: it would print `what()` once more, in full.
///
/// Several threads that end the process at the same time report one after the other. Where memory has run
/// out, the parts that need some are missing.
class VANSYS_API TTerminateHandler
{
public:
    /// Which messages are shown.
    enum class Messages
    {
        Full,
        Redacted, ///< without the values that were put into them
        Both
    };

    enum class CallStack
    {
        Shown,
        Hidden
    };

    /// Takes a part of the report, in UTF-8, with no zero behind it. What it throws is ignored.
    using Output = void (*)(void *context, char const *text, std::size_t size);

    struct Options
    {
        Messages messages = Messages::Full;
        CallStack callStack = CallStack::Shown;
        int descriptor = 2;      ///< a file descriptor of the C run-time library: 2 is standard error
        Output output = nullptr; ///< takes the report in place of the descriptor
        void *context = nullptr; ///< for `output`
    };

    TTerminateHandler() = delete;

    /// Installs the handler, or gives the installed one other options. To be called while no other thread
    /// does, and none ends the process: at the start.
    static void Install(Options const &options) noexcept;

    /// Puts the handler back that was there before. Where another one was installed meanwhile, that stays,
    /// and may call this one, which then only passes on.
    static void Remove() noexcept;
};
