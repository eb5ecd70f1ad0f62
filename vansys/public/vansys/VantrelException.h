/// @file
/// VantrelException: the root of the library's exceptions.
#pragma once

#include "vansys/Export.h"
#include "vansys/Forward.h"
#include "vansys/TCapturedStack.h"
#include "vansys/TStringCore.h"

#include <exception>
#include <list>
#include <vector>

/// An exception that carries a stack of messages, and beside it a stack of redacted messages.
///
/// Each layer that an exception passes through may add its own context (`StackExceptionAndRethrow`). A
/// redacted message is the text of a message without the values that were put into it, fit for logs in places
/// where the values are not: of a message from a `TFormatStringCore`, the format string. A message that was
/// given as plain text has no redacted form. Empty texts are never stacked.
///
/// What takes a `TFormatStringCore` needs its header, which this one does not include. It throws
/// `TFormatStringCore::Exception` when there are too few arguments.
///
/// It does not derive from `std::exception`. Exceptions are values: copying copies both stacks. One object is
/// used by one thread at a time; `Clone` gives another thread its own.
///
/// A class derived from it adds no data, and overrides `Clone` and `Throw` for its own type, so that whoever
/// holds a `VantrelException *` re-throws the right type: `VantrelExceptionOf` does that for it.
///
/// On request, an exception knows where it was made: `CaptureCallStacks`.
///
/// A failing allocation while a message is added is `std::bad_alloc` (or `TStringCore::Exception` when it was
/// the text that could not be made), and leaves the exception object as it was.
class VANSYS_API VantrelException
{
public:
    /// Copies both stacks, and has the call stack of the other one.
    VantrelException(VantrelException const &other);

    /// The messages are a copy of the list, empty ones included; nothing is redacted.
    explicit VantrelException(std::list<TStringCore> const &messages);

    /// Stacks one message, and its redacted form.
    explicit VantrelException(TFormatStringCore const &message);

    /// Stacks the text of `what()` as `ToString` gives it.
    explicit VantrelException(std::exception const &exception);

    /// Stacks one message of plain text.
    explicit VantrelException(TStringCore const &message);

    /// The same from a literal, wide or UTF-8: always plain text.
    explicit VantrelException(char const *message) : VantrelException(TStringCore(message)) {}

    explicit VantrelException(TCodeUnit const *message) : VantrelException(TStringCore(message)) {}

    explicit VantrelException(TWideTwin const *message) : VantrelException(TStringCore(message)) {}

    /// Copies both stacks, and has the call stack of the other one; on failure, nothing is changed.
    VantrelException &operator=(VantrelException const &other);

    virtual ~VantrelException();

    /// A copy of this object on the heap, of its own most derived type; the caller owns it.
    virtual VantrelException *Clone() const;

    /// Throws a copy of this object, of its own most derived type.
    [[noreturn]] virtual void Throw() const;

    /// All messages in order, each ended by a line feed unless it ends with one already.
    virtual TStringCore CollateMessagesForLog() const;

    /// The first message; empty when there is none.
    virtual TStringCore GetMessagesFront() const;

    /// The same as `CollateMessagesForLog`.
    virtual TStringCore GetConcatenatedMessages() const;

    /// Adds a message behind the others, and its redacted form behind those; neither if the message is empty.
    void StackMessage(TFormatStringCore const &message);

    /// Adds a message of plain text behind the others, unless it is empty.
    void StackMessage(TStringCore const &message);

    void StackMessage(char const *message) { StackMessage(TStringCore(message)); }

    void StackMessage(TCodeUnit const *message) { StackMessage(TStringCore(message)); }

    void StackMessage(TWideTwin const *message) { StackMessage(TStringCore(message)); }

    /// Adds a message before the others, and its redacted form before those; neither if the message is empty.
    void StackMessageFront(TFormatStringCore const &message);

    /// Adds a message of plain text before the others, unless it is empty.
    void StackMessageFront(TStringCore const &message);

    void StackMessageFront(char const *message) { StackMessageFront(TStringCore(message)); }

    void StackMessageFront(TCodeUnit const *message) { StackMessageFront(TStringCore(message)); }

    void StackMessageFront(TWideTwin const *message) { StackMessageFront(TStringCore(message)); }

    /// Clears both stacks, then stacks the message.
    void SetMessage(TFormatStringCore const &message);
    void SetMessage(TStringCore const &message);

    void SetMessage(char const *message) { SetMessage(TStringCore(message)); }

    void SetMessage(TCodeUnit const *message) { SetMessage(TStringCore(message)); }

    void SetMessage(TWideTwin const *message) { SetMessage(TStringCore(message)); }

    /// The messages, the oldest context first. Valid until the exception is changed or destroyed.
    std::list<TStringCore> const &GetMessages() const noexcept { return *m_messages; }

    /// The redacted messages, in the order of the messages that they belong to.
    std::list<TStringCore> const &GetRedactedMessages() const noexcept { return *m_redactedMessages; }

    /// A copy of the messages, in order.
    std::vector<TStringCore> GetMessagesVector() const;

    /// Whether exceptions that are made from now on, those of derived classes included, capture the call
    /// stack. Of the whole process, and off at first, as it costs each of them time and memory. Any thread
    /// may call it at any time. What was captured stays until the exceptions are gone.
    static void CaptureCallStacks(bool capture) noexcept;

    /// What the last `CaptureCallStacks` set; false before.
    static bool CapturesCallStacks() noexcept;

    /// Where the exception was made: the first frame is the function that called the constructor of this
    /// class, or the one of a derived class. Copies, which `Clone` and `Throw` make, have that of the
    /// original. Empty when it was not to be captured then, or when there was no memory for it.
    TCapturedStack CallStack() const noexcept;

    /// Sets `out` to the text of `what()`, read in the platform's default code page
    /// (`TStringCore::fromLocal8Bit`), or as UTF-8 should that fail.
    static void ToString(std::exception const &exception, TStringCore &out);

protected:
    /// No message at all.
    VantrelException();

private:
    struct Caller
    {
        void const *returnAddress; ///< null: nothing is captured
    };

    explicit VantrelException(Caller caller);

    // Owned, never null. Behind plain pointers, so that the layout does not depend on the standard library.
    std::list<TStringCore> *m_messages;
    std::list<TStringCore> *m_redactedMessages;
    // The call stacks are in a table beside the objects: those that have none are no larger for it.
};

/// To be called inside a catch block only (elsewhere it ends the process, as `throw;` does). Re-throws the
/// exception that is being handled. A `VantrelException` of any subclass gets the message stacked first, on
/// that same object, and keeps its type; any other exception passes through as it is.
[[noreturn]] VANSYS_API void StackExceptionAndRethrow(TFormatStringCore const &message);
[[noreturn]] VANSYS_API void StackExceptionAndRethrow(TStringCore const &message);

[[noreturn]] inline void StackExceptionAndRethrow(char const *message)
{
    StackExceptionAndRethrow(TStringCore(message));
}

[[noreturn]] inline void StackExceptionAndRethrow(TCodeUnit const *message)
{
    StackExceptionAndRethrow(TStringCore(message));
}

[[noreturn]] inline void StackExceptionAndRethrow(TWideTwin const *message)
{
    StackExceptionAndRethrow(TStringCore(message));
}
