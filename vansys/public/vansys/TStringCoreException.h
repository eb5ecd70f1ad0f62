/// @file
/// TStringCore::Exception: what the string itself throws.
#pragma once

#include "vansys/Export.h"
#include "vansys/TStringCore.h"

#include <utility>

/// What the string itself throws. It holds one message and is laid out like a `TStringCore`. It derives from
/// nothing and is caught by this type only. Copying it never throws.
class VANSYS_API TStringCore::Exception
{
public:
    explicit Exception(TStringCore const &message) noexcept : m_message(message) {}
    explicit Exception(TStringCore &&message) noexcept : m_message(std::move(message)) {}

    /// A copy on the heap, which the caller owns.
    Exception *Clone() const;

    /// Throws a copy of this object.
    [[noreturn]] void Throw() const;

    /// The message.
    TStringCore GetConcatenatedMessages() const noexcept { return m_message; }

    /// The message.
    TStringCore CollateMessagesForLog() const noexcept { return m_message; }

private:
    TStringCore m_message;
};

static_assert(sizeof(TStringCore::Exception) == sizeof(TStringCore));
