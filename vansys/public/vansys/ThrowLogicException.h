/// @file
/// The reporting point of the library's internal assertions. A header of its own, so that the lowest layers
/// can assert without knowing the exceptions.
#pragma once

#include "vansys/Export.h"

/// Reports a programming error that was detected at run time.
///
/// With a hook installed (`AssertHooks::SetLogicAssertHook`), calls it with the same arguments: what the hook
/// does is the outcome, and when it returns, this function returns. A caller therefore has a defined way to
/// go on after the call; the function is not `[[noreturn]]`.
///
/// Without a hook, composes "LogicAssert failed (but no hook has been set) at FILE line LINE: EXPRESSION",
/// writes it to the debugger output (on Linux: standard error) and throws a `VantrelException` with that text
/// as its only message.
///
/// `file` and `line` are the name of the assertion, by which hooks and logs tell it from others: a line is
/// given once and stays when the code moves, even where that leaves it beyond the end of the file.
///
/// `file` and `expression` are zero-terminated UTF-8; null counts as empty. May be called on any thread.
VANSYS_API void ThrowLogicException(char const *file, int line, char const *expression);
