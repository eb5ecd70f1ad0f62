#include "vansys/VantrelException.h"

#include "vansys/VantrelOutOfMemoryException.h"
#include "vansys/VantrelUserErrorException.h"

#include "main/vansys/failure/ExceptionStacks.h"

#include <memory>
#include <utility>

using vansys::detail::ExceptionStacks;
using Messages = std::list<TStringCore>;

namespace
{

/// Both lists of an exception while it is being built: all or nothing.
struct Stacks
{
    std::unique_ptr<Messages> messages = std::make_unique<Messages>();
    std::unique_ptr<Messages> redacted = std::make_unique<Messages>();
};

} // namespace

// The constructors are entered by calls, never inlined: their return address tells where the call stack
// begins.

VantrelException::VantrelException(Caller caller) : m_messages(nullptr), m_redactedMessages(nullptr)
{
    Stacks stacks;
    m_messages = stacks.messages.release();
    m_redactedMessages = stacks.redacted.release();
    if (caller.returnAddress && ExceptionStacks::IsOn())
        ExceptionStacks::Capture(*this, caller.returnAddress);
}

[[gnu::noinline]] VantrelException::VantrelException() : VantrelException(Caller{__builtin_return_address(0)})
{
}

// Each of the following delegates first: from there on the destructor frees the lists if filling them fails.

VantrelException::VantrelException(VantrelException const &other) : VantrelException(Caller{nullptr})
{
    *m_messages = *other.m_messages;
    *m_redactedMessages = *other.m_redactedMessages;
    if (ExceptionStacks::AreThere())
        ExceptionStacks::Copy(other, *this);
}

[[gnu::noinline]] VantrelException::VantrelException(std::list<TStringCore> const &messages)
    : VantrelException(Caller{__builtin_return_address(0)})
{
    *m_messages = messages;
}

[[gnu::noinline]] VantrelException::VantrelException(TStringCore const &message)
    : VantrelException(Caller{__builtin_return_address(0)})
{
    StackMessage(message);
}

VantrelException &VantrelException::operator=(VantrelException const &other)
{
    Messages messages = *other.m_messages;
    Messages redacted = *other.m_redactedMessages;
    m_messages->swap(messages);
    m_redactedMessages->swap(redacted);
    if (ExceptionStacks::AreThere())
        ExceptionStacks::Copy(other, *this);
    return *this;
}

VantrelException::~VantrelException()
{
    if (ExceptionStacks::AreThere())
        ExceptionStacks::Remove(*this);
    delete m_messages;
    delete m_redactedMessages;
}

void VantrelException::CaptureCallStacks(bool capture) noexcept
{
    ExceptionStacks::SwitchOn(capture);
}

bool VantrelException::CapturesCallStacks() noexcept
{
    return ExceptionStacks::IsOn();
}

TCapturedStack VantrelException::CallStack() const noexcept
{
    return ExceptionStacks::AreThere() ? ExceptionStacks::Find(*this) : TCapturedStack();
}

VantrelException *VantrelException::Clone() const
{
    return new VantrelException(*this);
}

void VantrelException::Throw() const
{
    throw VantrelException(*this);
}

TStringCore VantrelException::CollateMessagesForLog() const
{
    TStringCore result;
    for (TStringCore const &message : *m_messages)
    {
        result.append(message);
        if (message.back() != u'\n')
            result.append(u'\n');
    }
    return result;
}

TStringCore VantrelException::GetMessagesFront() const
{
    return m_messages->empty() ? TStringCore() : m_messages->front();
}

TStringCore VantrelException::GetConcatenatedMessages() const
{
    return CollateMessagesForLog();
}

void VantrelException::StackMessage(TStringCore const &message)
{
    if (!message.isEmpty())
        m_messages->push_back(message);
}

void VantrelException::StackMessageFront(TStringCore const &message)
{
    if (!message.isEmpty())
        m_messages->push_front(message);
}

void VantrelException::SetMessage(TStringCore const &message)
{
    Messages messages;
    if (!message.isEmpty())
        messages.push_back(message);
    m_messages->swap(messages);
    m_redactedMessages->clear();
}

std::vector<TStringCore> VantrelException::GetMessagesVector() const
{
    return std::vector<TStringCore>(m_messages->begin(), m_messages->end());
}

void StackExceptionAndRethrow(TStringCore const &message)
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

// Subclasses

VantrelOutOfMemoryException::VantrelOutOfMemoryException() : VantrelExceptionOf("Out of memory") {}

VantrelOutOfMemoryException::~VantrelOutOfMemoryException() = default;

VantrelUserErrorException::~VantrelUserErrorException() = default;
