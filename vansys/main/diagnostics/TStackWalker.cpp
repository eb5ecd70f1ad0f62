#include "vansys/TStackWalker.h"

#include "main/diagnostics/FrameLine.h"
#include "main/diagnostics/Frames.h"
#include "main/diagnostics/OutOfMemory.h"
#include "main/diagnostics/Symbols.h"

#include <utility>
#include <vector>

namespace detail = vansys::detail;

namespace
{

detail::ThreadAccess AccessOf(TStackWalker::ThreadAccess access) noexcept
{
    switch (access)
    {
    case TStackWalker::ThreadAccess::Attach:
        return detail::ThreadAccess::Attach;
    case TStackWalker::ThreadAccess::Signal:
        return detail::ThreadAccess::Signal;
    default:
        return detail::ThreadAccess::Automatic;
    }
}

/// The name, cut to what a name may have.
std::string Name(std::string &&name)
{
    constexpr std::size_t Limit = TStackWalker::STACKWALK_MAX_NAMELEN - 1;
    if (name.size() > Limit)
        name.resize(Limit);
    return std::move(name);
}

detail::Symbol SymbolOf(detail::Frame const &frame)
{
    return frame.programCounter == 0 ? detail::Symbol() : detail::LookUpSymbol(frame.Instruction());
}

TStackWalker::CallstackEntry EntryOf(detail::Frame const &frame, detail::Symbol &&symbol)
{
    TStackWalker::CallstackEntry entry;
    entry.programCounter = frame.programCounter;
    if (frame.programCounter == 0)
        return entry;
    entry.undecoratedName = Name(std::move(symbol.function));
    entry.undecoratedFullName = Name(std::move(symbol.fullFunction));
    entry.name = entry.undecoratedName.empty() ? "(symbol not available)" : entry.undecoratedName;
    entry.lineFileName = std::move(symbol.file);
    entry.lineNumber = symbol.line;
    entry.moduleName = std::move(symbol.module);
    entry.loadedImageName = std::move(symbol.imagePath);
    entry.baseOfImage = symbol.moduleBase;
    return entry;
}

} // namespace

TStackWalker::TStackWalker(TProcessHandle process, unsigned processId)
    : m_process(process),
      m_processId(processId)
{
}

TStackWalker::TStackWalker(TStackWalker const &) = default;
TStackWalker::TStackWalker(TStackWalker &&) noexcept = default;
TStackWalker &TStackWalker::operator=(TStackWalker const &) = default;
TStackWalker &TStackWalker::operator=(TStackWalker &&) noexcept = default;
TStackWalker::~TStackWalker() = default;

void TStackWalker::SetSymbolSearchPath(std::string path)
{
    m_symbolSearchPath = std::move(path);
}

bool TStackWalker::LoadModules()
try
{
    return detail::LoadModules(m_symbolSearchPath);
}
catch (...)
{
    return detail::FalseIfOutOfMemory();
}

// What follows is entered from outside by calls, never inlined: the caller's frame is where the calling
// thread's stack begins, and the return address tells it.

[[gnu::noinline]] bool TStackWalker::GenerateCallstack()
{
    return WalkCallingThread(__builtin_return_address(0));
}

[[gnu::noinline]] bool TStackWalker::GenerateCallstack(unsigned threadId)
{
    if (threadId == detail::CurrentThreadId())
        return WalkCallingThread(__builtin_return_address(0));
    return WalkOtherThread(threadId);
}

[[gnu::noinline]] bool TStackWalker::GenerateCallstacksForAllThreads()
{
    return WalkAllThreads(__builtin_return_address(0));
}

[[gnu::noinline]] bool TStackWalker::CallStackWalk(bool allThreads)
{
    void const *const returnAddress = __builtin_return_address(0);
    return allThreads ? WalkAllThreads(returnAddress) : WalkCallingThread(returnAddress);
}

bool TStackWalker::IsOwnProcess() const noexcept
{
    // All bits set stand for the calling process.
    return reinterpret_cast<std::uintptr_t>(m_process) == ~std::uintptr_t{0} ||
           m_processId == detail::CurrentProcessId();
}

bool TStackWalker::WalkCallingThread(void const *returnAddress)
try
{
    if (!IsOwnProcess() || !LoadModules())
        return false;
    GiveOut(detail::WalkCallingThread(returnAddress));
    return true;
}
catch (...)
{
    return detail::FalseIfOutOfMemory();
}

bool TStackWalker::WalkOtherThread(unsigned threadId)
try
{
    if (!IsOwnProcess() || !LoadModules())
        return false;
    detail::ThreadStack const stack = detail::WalkThreads({threadId}, AccessOf(m_threadAccess)).front();
    if (stack.answer != detail::ThreadStack::Answer::Given)
        return false;
    GiveOut(stack);
    return true;
}
catch (...)
{
    return detail::FalseIfOutOfMemory();
}

bool TStackWalker::WalkAllThreads(void const *returnAddress)
try
{
    if (!IsOwnProcess() || !LoadModules())
        return false;
    std::vector<unsigned> others = detail::ListThreads();
    if (others.empty())
        return false;
    std::erase(others, detail::CurrentThreadId());
    std::vector<detail::ThreadStack> const stacks = detail::WalkThreads(others, AccessOf(m_threadAccess));
    GiveOut(detail::WalkCallingThread(returnAddress));
    bool haveAllAnswered = true;
    for (detail::ThreadStack const &stack : stacks)
    {
        GiveOut(stack);
        // A thread that has ended since they were listed is none of the process any more.
        haveAllAnswered &= stack.answer != detail::ThreadStack::Answer::None;
    }
    return haveAllAnswered;
}
catch (...)
{
    return detail::FalseIfOutOfMemory();
}

void TStackWalker::GiveOut(detail::ThreadStack const &stack)
{
    struct WalkedThread
    {
        WalkedThread(unsigned &id, unsigned value) noexcept : m_id(id) { m_id = value; }
        WalkedThread(WalkedThread const &) = delete;
        WalkedThread &operator=(WalkedThread const &) = delete;
        ~WalkedThread() { m_id = 0; }

        unsigned &m_id;
    } const walked(m_walkedThreadId, stack.threadId);

    if (stack.answer == detail::ThreadStack::Answer::None)
        OnOutput(("(thread " + std::to_string(stack.threadId) + " did not answer)").c_str());

    int repetitions = 0;
    for (std::size_t i = 0; i < stack.frames.size(); ++i)
    {
        detail::Frame const &frame = stack.frames[i];
        bool const isOutermost = i + 1 == stack.frames.size();
        bool const callsItself = !isOutermost && stack.frames[i + 1].programCounter == frame.programCounter;
        repetitions = callsItself ? repetitions + 1 : 0;
        if (m_maxRecursionDepth > 0 && repetitions > m_maxRecursionDepth)
        {
            OnOutput("Recursive function passed the set recursion depth.");
            return;
        }
        CallstackEntryType type = i == 0 ? firstEntry : nextEntry;
        if (isOutermost && stack.isComplete)
            type = lastEntry;
        detail::Symbol symbol = SymbolOf(frame);
        if (!symbol.notice.empty())
            OnOutput(symbol.notice.c_str());
        OnCallstackEntry(static_cast<unsigned>(i), type, EntryOf(frame, std::move(symbol)));
    }
}

void TStackWalker::OnCallstackEntry(unsigned frameNumber, CallstackEntryType type,
                                    CallstackEntry const &entry)
{
    if (type == lastEntry || entry.programCounter == 0 || detail::IsHiddenSource(entry.lineFileName))
        return;
    detail::FrameLine frame;
    frame.number = frameNumber;
    frame.programCounter = entry.programCounter;
    frame.function = entry.name;
    frame.file = entry.lineFileName;
    frame.line = entry.lineNumber;
    frame.module = entry.moduleName;
    std::string line;
    AppendFrameLine(line, frame,
                    {.number = m_includeThreadInfo,
                     .address = m_includeSystemMemoryAddresses,
                     .lineNumber = m_includeFileLineNumber,
                     .file = m_includeFileName});
    OnOutput(line.c_str());
}
