#include "vansys/TCapturedStack.h"

#include "main/diagnostics/CaptureStack.h"
#include "main/diagnostics/FrameLine.h"
#include "main/diagnostics/Symbols.h"

#include <algorithm>
#include <utility>

namespace
{

using namespace vansys::detail;

/// Adds the line of a frame, unless frames of its source are left out. Returns whether it was added.
bool AppendFrame(std::string &text, unsigned number, std::uintptr_t returnAddress)
{
    Symbol const symbol = LookUpSymbol(returnAddress - 1);
    if (IsHiddenSource(symbol.file))
        return false;
    FrameLine frame;
    frame.number = number;
    frame.programCounter = returnAddress;
    frame.function = symbol.function;
    frame.file = symbol.file;
    frame.line = symbol.line;
    frame.module = symbol.module;
    AppendFrameLine(text, frame);
    return true;
}

} // namespace

[[gnu::noinline]] TCapturedStack TCapturedStack::Capture(std::size_t skip, std::size_t maxFrames) noexcept
{
    TCapturedStack stack;
    stack.m_count = CaptureStack(stack.m_frames.data(), std::min(maxFrames, MaxFrames), skip + 1);
    return stack;
}

[[gnu::noinline]] TCapturedStack TCapturedStack::CaptureFrom(void const *returnAddress) noexcept
{
    constexpr std::size_t MaxSkipped = 16;
    std::array<std::uintptr_t, MaxSkipped + MaxFrames> frames;
    std::size_t const count = CaptureStack(frames.data(), frames.size(), 1);
    auto const end = frames.begin() + static_cast<std::ptrdiff_t>(count);
    auto begin = std::find(frames.begin(), end, reinterpret_cast<std::uintptr_t>(returnAddress));
    if (begin == end)
        begin = frames.begin();
    TCapturedStack stack;
    stack.m_count = std::min(static_cast<std::size_t>(end - begin), MaxFrames);
    std::copy_n(begin, stack.m_count, stack.m_frames.begin());
    return stack;
}

std::vector<std::string> TCapturedStack::Lines() const
{
    std::vector<std::string> lines;
    lines.reserve(m_count);
    for (unsigned i = 0; i < m_count; ++i)
    {
        std::string line;
        if (AppendFrame(line, i, m_frames[i]))
            lines.push_back(std::move(line));
    }
    return lines;
}

std::string TCapturedStack::Text() const
{
    std::string text;
    for (unsigned i = 0; i < m_count; ++i)
        if (AppendFrame(text, i, m_frames[i]))
            text += '\n';
    return text;
}
