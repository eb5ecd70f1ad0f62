// What the exceptions owe to format strings and to code pages, of which their other sources know nothing.

#include "vansys/TFormatStringCore.h"
#include "vansys/VantrelException.h"

#include <utility>

using Messages = std::list<TStringCore>;

namespace
{

/// A message and its redacted form, each in a list of its own, ready to be spliced in; both empty if the
/// message is.
struct FormattedMessage
{
    explicit FormattedMessage(TFormatStringCore const &format)
    {
        TStringCore text = format.result();
        if (text.isEmpty())
            return;
        message.push_back(std::move(text));
        redacted.push_back(format.formatString());
    }

    Messages message;
    Messages redacted;
};

TStringCore TextOf(std::exception const &exception)
{
    try
    {
        return TStringCore::fromLocal8Bit(exception.what());
    }
    catch (...) // also what an assertion hook of the host throws
    {
        return TStringCore::fromUtf8(exception.what());
    }
}

} // namespace

// Never inlined, as the other constructors are not.

[[gnu::noinline]] VantrelException::VantrelException(TFormatStringCore const &message)
    : VantrelException(Caller{__builtin_return_address(0)})
{
    StackMessage(message);
}

[[gnu::noinline]] VantrelException::VantrelException(std::exception const &exception)
    : VantrelException(Caller{__builtin_return_address(0)})
{
    StackMessage(TextOf(exception));
}

void VantrelException::StackMessage(TFormatStringCore const &message)
{
    FormattedMessage formatted(message);
    m_messages->splice(m_messages->end(), formatted.message);
    m_redactedMessages->splice(m_redactedMessages->end(), formatted.redacted);
}

void VantrelException::StackMessageFront(TFormatStringCore const &message)
{
    FormattedMessage formatted(message);
    m_messages->splice(m_messages->begin(), formatted.message);
    m_redactedMessages->splice(m_redactedMessages->begin(), formatted.redacted);
}

void VantrelException::SetMessage(TFormatStringCore const &message)
{
    FormattedMessage formatted(message);
    m_messages->swap(formatted.message);
    m_redactedMessages->swap(formatted.redacted);
}

void VantrelException::ToString(std::exception const &exception, TStringCore &out)
{
    out = TextOf(exception);
}

void StackExceptionAndRethrow(TFormatStringCore const &message)
{
    try
    {
        throw;
    }
    catch (VantrelException &exception)
    {
        exception.StackMessage(message);
        throw;
    }
}
