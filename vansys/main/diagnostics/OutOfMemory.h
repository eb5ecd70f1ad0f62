/// @file
/// The memory that runs out as a result of a function.
#pragma once

namespace vansys::detail
{

/// For handlers of all exceptions: false when it is `std::bad_alloc` that is handled. Else throws again what
/// it is.
///
/// In a source of its own: where a source for Windows defines an exported class with virtual functions, GCC
/// exports the descriptions of all types that are caught there, too.
bool FalseIfOutOfMemory();

} // namespace vansys::detail
