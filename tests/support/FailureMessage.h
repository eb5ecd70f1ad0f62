/// @file
/// What an operation says that fails.
#pragma once

#include "vansys/VantrelException.h"

#include <gtest/gtest.h>

/// The only message of the exception of that type that `action` throws; empty when it throws none.
template <class Exception, class Action>
TStringCore FailureMessage(Action const &action)
{
    try
    {
        action();
    }
    catch (Exception const &exception)
    {
        EXPECT_EQ(exception.GetMessages().size(), 1u);
        return exception.GetMessagesFront();
    }
    return TStringCore();
}

/// What the exception of a string says that `action` throws; empty when it throws none.
template <class Action>
TStringCore StringFailureMessage(Action const &action)
{
    try
    {
        action();
    }
    catch (TStringCore::Exception const &exception)
    {
        return exception.GetConcatenatedMessages();
    }
    return TStringCore();
}
