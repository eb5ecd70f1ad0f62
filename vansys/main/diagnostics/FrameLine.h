/// @file
/// FrameLine: the line of text that describes one frame of a call stack.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vansys::detail
{

/// What there is to say about a frame. What is unknown is empty.
struct FrameLine
{
    unsigned number = 0; ///< of the frame, 0 for the innermost
    std::uintptr_t programCounter = 0;
    std::string_view function;
    std::string_view file;
    unsigned line = 0;
    std::string_view module;
};

/// The parts of a line that may be left out.
struct FrameLineParts
{
    bool number = true;
    bool address = true;
    bool lineNumber = true;
    bool file = true;
};

/// Adds the line, without a line end, to `text`:
///
///     0x00000002 parser.cpp(212): core!Parse
///     0x00000003 0x5A2F10 core!Parse             where the file is unknown
void AppendFrameLine(std::string &text, FrameLine const &frame, FrameLineParts const &parts = {});

/// Whether a source is one of those that never appear in a call stack, the walker's own and those of what
/// tracks memory. Told by the name of the file, whatever its folder and the case of its letters.
bool IsHiddenSource(std::string_view file) noexcept;

} // namespace vansys::detail
