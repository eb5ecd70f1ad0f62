#include "main/diagnostics/Frames.h"

#include "main/diagnostics/DebugHelp_win.h"
#include "main/platform/Handle.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <tlhelp32.h>

namespace vansys::detail
{

namespace
{

constexpr DWORD MachineType = IMAGE_FILE_MACHINE_I386;
static_assert(MachineType == 332);

/// Control, integer and segment registers.
constexpr DWORD ContextFlags = CONTEXT_FULL;
static_assert(ContextFlags == 0x10007);

/// What lay on the stack of a thread at the moment for which its registers are known. The thread runs on
/// meanwhile: the debug-help library takes locks of the heap, which a suspended thread might hold.
class StackCopy
{
public:
    /// Copies from the stack pointer to the end of the stack, of which at most `Capacity` bytes are taken.
    void Take(DWORD stackPointer) noexcept
    {
        m_begin = stackPointer;
        m_size = 0;
        auto const *const source = reinterpret_cast<unsigned char const *>(stackPointer);
        MEMORY_BASIC_INFORMATION region{};
        if (!VirtualQuery(source, &region, sizeof region) || region.State != MEM_COMMIT)
            return;
        auto const *const end = static_cast<unsigned char const *>(region.BaseAddress) + region.RegionSize;
        SIZE_T read = 0;
        ReadProcessMemory(GetCurrentProcess(), source, m_bytes.get(),
                          std::min(Capacity, static_cast<std::size_t>(end - source)), &read);
        m_size = read;
    }

    bool Read(DWORD64 address, void *to, DWORD size) const noexcept
    {
        if (address < m_begin || address - m_begin > m_size || size > m_size - (address - m_begin))
            return false;
        std::memcpy(to, m_bytes.get() + (address - m_begin), size);
        return true;
    }

private:
    static constexpr std::size_t Capacity = std::size_t{1} << 20;

    std::unique_ptr<unsigned char[]> const m_bytes =
        std::make_unique_for_overwrite<unsigned char[]>(Capacity);
    DWORD64 m_begin = 0;
    std::size_t m_size = 0;
};

/// Of the thread that is walked; null for the calling one. Under the lock of the debug-help library.
StackCopy const *g_stackCopy = nullptr;

BOOL CALLBACK StackWalkerReadProcMem(HANDLE process, DWORD64 address, PVOID to, DWORD size, LPDWORD read)
{
    if (g_stackCopy && g_stackCopy->Read(address, to, size))
    {
        *read = size;
        return TRUE;
    }
    SIZE_T count = 0;
    BOOL const succeeded = ReadProcessMemory(
        process, reinterpret_cast<void const *>(static_cast<std::uintptr_t>(address)), to, size, &count);
    *read = static_cast<DWORD>(count);
    return succeeded;
}

/// Walks from these registers. Under the lock of the debug-help library.
void WalkFrames(HANDLE thread, CONTEXT context, ThreadStack &stack)
{
    STACKFRAME64 frame{};
    frame.AddrPC = {context.Eip, 0, AddrModeFlat};
    frame.AddrFrame = {context.Ebp, 0, AddrModeFlat};
    frame.AddrStack = {context.Esp, 0, AddrModeFlat};
    while (!stack.isComplete && stack.frames.size() < MaxFrames &&
           StackWalk64(MachineType, GetCurrentProcess(), thread, &frame, &context, StackWalkerReadProcMem,
                       SymFunctionTableAccess64, SymGetModuleBase64, nullptr))
    {
        stack.frames.push_back({static_cast<std::uintptr_t>(frame.AddrPC.Offset), stack.frames.empty()});
        stack.isComplete = frame.AddrReturn.Offset == 0;
    }
}

/// The thread stands still only while its registers and its stack are copied. Returns whether that went well.
bool CopyStack(HANDLE thread, CONTEXT &context, StackCopy &copy) noexcept
{
    if (SuspendThread(thread) == static_cast<DWORD>(-1))
        return false;
    bool const isKnown = GetThreadContext(thread, &context) != FALSE;
    if (isKnown)
        copy.Take(context.Esp);
    ResumeThread(thread);
    return isKnown;
}

ThreadStack WalkThread(unsigned threadId, StackCopy &copy)
{
    ThreadStack stack;
    stack.threadId = threadId;
    Handle const thread(OpenThread(THREAD_ALL_ACCESS, FALSE, threadId));
    if (!thread || GetProcessIdOfThread(thread.Get()) != GetCurrentProcessId())
        return stack;
    CONTEXT context{};
    context.ContextFlags = ContextFlags;
    if (!CopyStack(thread.Get(), context, copy))
        return stack;
    stack.answer = ThreadStack::Answer::Given;
    std::unique_lock const lock = LockDebugHelp();
    g_stackCopy = &copy;
    try
    {
        WalkFrames(thread.Get(), context, stack);
    }
    catch (...)
    {
        g_stackCopy = nullptr;
        throw;
    }
    g_stackCopy = nullptr;
    return stack;
}

} // namespace

unsigned CurrentProcessId() noexcept
{
    return GetCurrentProcessId();
}

unsigned CurrentThreadId() noexcept
{
    return GetCurrentThreadId();
}

std::vector<unsigned> ListThreads()
{
    std::vector<unsigned> threads;
    Handle const snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    if (!snapshot)
        return threads;
    // A record may be shorter than asked for: it has to hold the owner.
    constexpr DWORD NeededSize =
        offsetof(THREADENTRY32, th32OwnerProcessID) + sizeof(THREADENTRY32::th32OwnerProcessID);
    static_assert(NeededSize == 16);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL found = Thread32First(snapshot.Get(), &entry); found;
         found = Thread32Next(snapshot.Get(), &entry))
    {
        if (entry.dwSize >= NeededSize && entry.th32OwnerProcessID == GetCurrentProcessId())
            threads.push_back(entry.th32ThreadID);
        entry.dwSize = sizeof entry;
    }
    return threads;
}

ThreadStack WalkCallingThread(void const *innermost)
{
    ThreadStack stack;
    stack.threadId = GetCurrentThreadId();
    stack.answer = ThreadStack::Answer::Given;
    CONTEXT context{};
    RtlCaptureContext(&context);
    {
        std::unique_lock const lock = LockDebugHelp();
        WalkFrames(GetCurrentThread(), context, stack);
    }
    auto const found =
        std::find_if(stack.frames.begin(), stack.frames.end(),
                     [innermost](Frame const &frame)
                     { return frame.programCounter == reinterpret_cast<std::uintptr_t>(innermost); });
    if (found != stack.frames.end())
        stack.frames.erase(stack.frames.begin(), found);
    return stack;
}

ThreadStack WalkFrom(HANDLE thread, CONTEXT const &context)
{
    ThreadStack stack;
    stack.threadId = GetThreadId(thread);
    stack.answer = ThreadStack::Answer::Given;
    std::unique_lock const lock = LockDebugHelp();
    WalkFrames(thread, context, stack);
    return stack;
}

std::vector<ThreadStack> WalkThreads(std::vector<unsigned> const &threadIds, ThreadAccess)
{
    StackCopy copy;
    std::vector<ThreadStack> stacks;
    stacks.reserve(threadIds.size());
    for (unsigned const id : threadIds)
        stacks.push_back(WalkThread(id, copy));
    return stacks;
}

bool LoadModules(std::string const &searchPath)
{
    std::unique_lock const lock = LockDebugHelp();
    return StartSymbolHandler(searchPath);
}

} // namespace vansys::detail
