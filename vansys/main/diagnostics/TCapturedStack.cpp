#include "vansys/TCapturedStack.h"

#include "main/diagnostics/CaptureStack.h"
#include "main/diagnostics/FrameLine.h"
#include "main/diagnostics/Symbols.h"

#include <algorithm>
#include <array>
#include <span>

namespace
{

using namespace vansys::detail;

/// Calls `take` with each line.
template <class Take>
void DescribeFrames(std::span<std::uintptr_t const> returnAddresses, Take take)
{
    std::array<std::uintptr_t, TCapturedStack::MaxFrames> calls;
    for (std::size_t i = 0; i < returnAddresses.size(); ++i)
        calls[i] = returnAddresses[i] - 1;
    std::string line;
    LookUpSymbols(std::span(calls).first(returnAddresses.size()),
                  [&](std::size_t index, Symbol const &symbol)
                  {
                      if (!symbol.notice.empty())
                          take(symbol.notice);
                      if (IsHiddenSource(symbol.file))
                          return;
                      FrameLine frame;
                      frame.number = static_cast<unsigned>(index);
                      frame.programCounter = returnAddresses[index];
                      frame.function = symbol.function;
                      frame.file = symbol.file;
                      frame.line = symbol.line;
                      frame.module = symbol.module;
                      line.clear();
                      AppendFrameLine(line, frame);
                      take(line);
                  });
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
    DescribeFrames(std::span(m_frames).first(m_count),
                   [&](std::string const &line) { lines.push_back(line); });
    return lines;
}

std::string TCapturedStack::Text() const
{
    std::string text;
    DescribeFrames(std::span(m_frames).first(m_count),
                   [&](std::string const &line) { (text += line) += '\n'; });
    return text;
}
