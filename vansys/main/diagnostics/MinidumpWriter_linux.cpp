#include "main/diagnostics/MinidumpWriter.h"

#include "main/diagnostics/BareProcess_linux.h"
#include "main/diagnostics/FrozenThreads_linux.h"
#include "main/diagnostics/MemoryMap_linux.h"
#include "main/diagnostics/MinidumpFile_linux.h"
#include "main/diagnostics/MinidumpFormat.h"

#include <algorithm>
#include <atomic>
#include <cpuid.h>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <new>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <utility>

namespace vansys::detail
{

namespace
{

using minidump::Location;
using minidump::Memory;
using minidump::StreamType;

constexpr std::uint64_t RedZone = 128;               // below the stack pointer, but in use
constexpr std::uint64_t LargestStackPart = 60 << 10; // the innermost frames of a thread are in it
constexpr std::uint64_t AllStackParts = 256 << 20;
constexpr std::uint64_t LargestGuard = 1 << 20; // between an exhausted stack and the address that was too far
constexpr std::uint64_t ChunkSize = 512;        // what is taken of memory that is pointed to: two of them
constexpr std::uint64_t AllReferencedMemory = 1 << 30;
constexpr std::size_t StreamCount = 9;

/// Writes one dump. Large, and so not for the stack.
class Writer
{
public:
    Writer(int process, int shownThread, CrashDumpType type, CrashedThread const *crashed) noexcept
        : m_process(process),
          m_shownThread(crashed ? crashed->id : shownThread),
          m_withReferenced(
              (static_cast<int>(type) & static_cast<int>(CrashDumpType::StacksAndReferencedMemory)) != 0),
          m_type(type),
          m_crashed(crashed),
          m_threads(process)
    {
    }

    bool Begin(char const *fileName) noexcept { return m_file.Begin(fileName); }

    /// To be called by the thread that may stop those of the process. Memory is read by way of `memoryOwner`,
    /// which is the process or one that shares its memory.
    void Write(int memoryOwner) noexcept
    {
        m_succeeded = WriteAll(memoryOwner);
        m_threads.LetGo();
    }

    bool Commit() noexcept { return m_succeeded && m_file.Commit(); }

private:
    bool WriteAll(int memoryOwner) noexcept;
    bool WriteThreads() noexcept;
    bool WriteThread(int id, minidump::Context const &context) noexcept;
    Memory WriteStack(std::uint64_t stackPointer, std::uint64_t &interrupted) noexcept;
    bool NotePointers(std::uint64_t start, std::size_t size, std::uint64_t &interrupted) noexcept;
    std::uint64_t InterruptedStack(std::uint64_t start, std::size_t offset, std::size_t size) const noexcept;
    void SortChunks() noexcept;
    bool WriteReferencedMemory() noexcept;
    bool WriteMemory(std::uint64_t start, std::uint64_t end) noexcept;
    bool WriteModules() noexcept;
    std::uint32_t WriteString(std::string_view text) noexcept;
    void WriteException() noexcept;
    void WriteSystemInfo() noexcept;
    bool WriteTexts() noexcept;
    void AddStream(StreamType type, Location location) noexcept;

    template <class T>
    void AddList(StreamType type, RawArray<T> const &list) noexcept;

    int m_process;
    int m_shownThread; ///< the one that the reader is to look at first
    bool m_withReferenced;
    CrashDumpType m_type;
    CrashedThread const *m_crashed;
    bool m_succeeded = false;

    FrozenThreads m_threads;
    MemoryMap m_map;
    MinidumpFile m_file;
    std::uint64_t m_largestStackPart = LargestStackPart;
    minidump::Exception m_exception{};
    RawArray<minidump::Thread> m_threadEntries;
    RawArray<Memory> m_memory;
    RawArray<std::uint64_t> m_chunks; ///< numbers of those that stacks point to
    std::size_t m_sortedChunks = 0;
    std::size_t m_streamCount = 0;
    minidump::Directory m_directory[StreamCount] = {};
    alignas(16) std::byte m_buffer[65536];
};

static_assert(LargestStackPart <= 65536, "a part of a stack is looked through in the buffer");

minidump::Context ToContext(FrozenThreads::Registers const &registers) noexcept
{
    user_regs_struct const &from = registers.general;
    minidump::Context to{};
    to.flags = minidump::ContextFull;
    to.mxcsr = registers.floating.mxcsr;
    to.cs = static_cast<std::uint16_t>(from.cs);
    to.ds = static_cast<std::uint16_t>(from.ds);
    to.es = static_cast<std::uint16_t>(from.es);
    to.fs = static_cast<std::uint16_t>(from.fs);
    to.gs = static_cast<std::uint16_t>(from.gs);
    to.ss = static_cast<std::uint16_t>(from.ss);
    to.eflags = static_cast<std::uint32_t>(from.eflags);
    to.rax = from.rax;
    to.rcx = from.rcx;
    to.rdx = from.rdx;
    to.rbx = from.rbx;
    to.rsp = from.rsp;
    to.rbp = from.rbp;
    to.rsi = from.rsi;
    to.rdi = from.rdi;
    to.r8 = from.r8;
    to.r9 = from.r9;
    to.r10 = from.r10;
    to.r11 = from.r11;
    to.r12 = from.r12;
    to.r13 = from.r13;
    to.r14 = from.r14;
    to.r15 = from.r15;
    to.rip = from.rip;
    static_assert(sizeof to.floating == sizeof registers.floating);
    std::memcpy(to.floating, &registers.floating, sizeof to.floating);
    return to;
}

/// What the handler of a signal gets has the same registers, by other names.
minidump::Context ToContext(ucontext_t const &context) noexcept
{
    auto const from = [&](int index) { return static_cast<std::uint64_t>(context.uc_mcontext.gregs[index]); };
    FrozenThreads::Registers registers{};
    user_regs_struct &to = registers.general;
    to.cs = from(REG_CSGSFS) & 0xFFFF;
    to.gs = from(REG_CSGSFS) >> 16 & 0xFFFF;
    to.fs = from(REG_CSGSFS) >> 32 & 0xFFFF;
    to.ss = from(REG_CSGSFS) >> 48;
    to.eflags = from(REG_EFL);
    to.rax = from(REG_RAX);
    to.rcx = from(REG_RCX);
    to.rdx = from(REG_RDX);
    to.rbx = from(REG_RBX);
    to.rsp = from(REG_RSP);
    to.rbp = from(REG_RBP);
    to.rsi = from(REG_RSI);
    to.rdi = from(REG_RDI);
    to.r8 = from(REG_R8);
    to.r9 = from(REG_R9);
    to.r10 = from(REG_R10);
    to.r11 = from(REG_R11);
    to.r12 = from(REG_R12);
    to.r13 = from(REG_R13);
    to.r14 = from(REG_R14);
    to.r15 = from(REG_R15);
    to.rip = from(REG_RIP);
    if (context.uc_mcontext.fpregs)
        std::memcpy(&registers.floating, context.uc_mcontext.fpregs, sizeof registers.floating);
    return ToContext(registers);
}

bool Writer::WriteAll(int memoryOwner) noexcept
{
    minidump::Header header{};
    m_file.Append(&header, sizeof header);
    if (!m_threads.Freeze() || !m_map.Read(m_process, memoryOwner) || !WriteThreads() ||
        !WriteReferencedMemory() || !WriteModules())
        return false;
    AddList(StreamType::ThreadList, m_threadEntries);
    AddList(StreamType::MemoryList, m_memory);
    WriteException();
    WriteSystemInfo();
    if (!WriteTexts())
        return false;
    m_threads.LetGo();

    timespec now{};
    RawCall(SYS_clock_gettime, CLOCK_REALTIME, &now);
    header.signature = minidump::Signature;
    header.version = minidump::Version;
    header.streamCount = static_cast<std::uint32_t>(m_streamCount);
    header.directoryOffset = m_file.Append(m_directory, m_streamCount * sizeof *m_directory);
    header.time = static_cast<std::uint32_t>(now.tv_sec);
    header.flags = static_cast<std::uint32_t>(m_type);
    return m_file.Finish(&header, sizeof header);
}

bool Writer::WriteThreads() noexcept
{
    std::size_t const count = m_threads.Threads().Size() + 1;
    m_largestStackPart = std::clamp<std::uint64_t>(AllStackParts / count, 1024, LargestStackPart);
    // That of the crashed thread is known from elsewhere, even where nothing may be stopped and looked at.
    if (m_crashed && !WriteThread(m_crashed->id, ToContext(*m_crashed->context)))
        return false;
    for (FrozenThreads::Thread const &thread : m_threads.Threads())
    {
        FrozenThreads::Registers registers;
        if (thread.state != FrozenThreads::Thread::Stopped || (m_crashed && thread.id == m_crashed->id) ||
            !FrozenThreads::ReadRegisters(thread.id, registers))
            continue;
        if (!WriteThread(thread.id, ToContext(registers)))
            return false;
    }
    return m_threadEntries.Size() != 0;
}

bool Writer::WriteThread(int id, minidump::Context const &context) noexcept
{
    minidump::Thread entry{};
    entry.id = static_cast<std::uint32_t>(id);
    entry.context = {sizeof context, m_file.Append(&context, sizeof context)};
    std::uint64_t interrupted = 0;
    entry.stack = WriteStack(context.rsp, interrupted);
    // The handler of a signal may have a stack of its own. What it has interrupted, by then handlers too, has
    // another.
    for (int level = 0; interrupted && level < 4; ++level)
        WriteStack(std::exchange(interrupted, 0), interrupted);

    if (id == m_shownThread || m_threadEntries.Size() == 0)
    {
        m_exception.threadId = entry.id;
        m_exception.address = context.rip;
        m_exception.context = entry.context;
    }
    return m_threadEntries.Append(entry);
}

/// Writes the part of a stack that begins at its pointer, and says whether that is of the handler of a
/// signal, which has interrupted code with another stack.
Memory Writer::WriteStack(std::uint64_t stackPointer, std::uint64_t &interrupted) noexcept
{
    MappedRange const *range = m_map.FindFrom(stackPointer);
    if (range && range->start <= stackPointer && !range->readable)
        range = m_map.FindFrom(range->end); // the guard, below the end of an exhausted stack
    if (!range || !range->readable ||
        (range->start > stackPointer && range->start - stackPointer > LargestGuard))
        return {};
    std::uint64_t const start = std::max(range->start, (stackPointer - RedZone) & ~std::uint64_t{7});
    std::uint64_t end = std::min(range->end, start + m_largestStackPart);
    for (Memory const &other : m_memory)
    {
        if (other.start <= start && start < other.start + other.location.size)
        {
            auto const skipped = static_cast<std::uint32_t>(start - other.start);
            return {start, {other.location.size - skipped, other.location.offset + skipped}};
        }
        if (start < other.start)
            end = std::min(end, other.start);
    }
    std::size_t const size = m_map.ReadMemory(start, m_buffer, end - start);
    Memory const memory{start, {static_cast<std::uint32_t>(size), m_file.Append(m_buffer, size)}};
    if (size == 0 || !m_memory.Append(memory) || !NotePointers(start, size, interrupted))
        return {};
    return memory;
}

/// Looks through the part of a stack that is in the buffer.
bool Writer::NotePointers(std::uint64_t start, std::size_t size, std::uint64_t &interrupted) noexcept
{
    for (std::size_t offset = 0; offset + 8 <= size; offset += 8)
    {
        if (!interrupted)
            interrupted = InterruptedStack(start, offset, size);
        if (!m_withReferenced)
            continue;
        std::uint64_t address = 0;
        std::memcpy(&address, m_buffer + offset, sizeof address);
        // What cannot be written to is in the files of the modules.
        MappedRange const *const range = m_map.Find(address);
        if (!range || !range->readable || !range->writable)
            continue;
        std::uint64_t const chunk = address / ChunkSize;
        if (!m_chunks.Append(chunk) || ((chunk + 1) * ChunkSize < range->end && !m_chunks.Append(chunk + 1)))
            return false;
    }
    if (m_chunks.Size() > 2 * m_sortedChunks + 65536)
        SortChunks();
    return true;
}

/// What the kernel leaves for the handler of a signal has, side by side, where the stack of handlers is,
/// which is where this is being found, and the registers of what was interrupted.
std::uint64_t Writer::InterruptedStack(std::uint64_t start, std::size_t offset,
                                       std::size_t size) const noexcept
{
    constexpr std::size_t registersEnd =
        offsetof(ucontext_t, uc_mcontext.gregs) + (REG_CSGSFS + 1) * sizeof(greg_t);
    if (size - offset < registersEnd)
        return 0;
    alignas(ucontext_t) std::byte bytes[registersEnd];
    std::memcpy(bytes, m_buffer + offset, registersEnd);
    auto const word = [&](std::size_t at)
    {
        std::uint64_t value = 0;
        std::memcpy(&value, bytes + at, sizeof value);
        return value;
    };
    auto const interrupted = [&](std::size_t index)
    { return word(offsetof(ucontext_t, uc_mcontext.gregs) + index * sizeof(greg_t)); };

    std::uint64_t const here = start + offset;
    std::uint64_t const handlers = word(offsetof(ucontext_t, uc_stack.ss_sp));
    std::uint64_t const handlersSize = word(offsetof(ucontext_t, uc_stack.ss_size));
    std::uint64_t const stackPointer = interrupted(REG_RSP);
    if (here - handlers >= handlersSize || stackPointer - handlers < handlersSize ||
        (interrupted(REG_CSGSFS) & 0xFFFF) != 0x33)
        return 0;
    MappedRange const *const code = m_map.Find(interrupted(REG_RIP));
    return code && code->executable ? stackPointer : 0;
}

void Writer::SortChunks() noexcept
{
    std::sort(m_chunks.begin(), m_chunks.end());
    m_sortedChunks =
        static_cast<std::size_t>(std::unique(m_chunks.begin(), m_chunks.end()) - m_chunks.begin());
    m_chunks.Resize(m_sortedChunks);
}

/// Writes what the stacks point to and is not of a stack that is written already.
bool Writer::WriteReferencedMemory() noexcept
{
    auto const byStart = [](Memory const &a, Memory const &b) { return a.start < b.start; };
    std::sort(m_memory.begin(), m_memory.end(), byStart);
    SortChunks();
    std::size_t const stackCount = m_memory.Size();
    std::size_t stack = 0;
    for (std::size_t i = 0; i < m_chunks.Size();)
    {
        std::uint64_t start = m_chunks[i] * ChunkSize;
        std::uint64_t end = start;
        for (; i < m_chunks.Size() && m_chunks[i] * ChunkSize == end; ++i)
            end += ChunkSize;
        auto const stackEnd = [&] { return m_memory[stack].start + m_memory[stack].location.size; };
        while (stack < stackCount && stackEnd() <= start)
            ++stack;
        for (; stack < stackCount && m_memory[stack].start < end; ++stack)
        {
            if (start < m_memory[stack].start && !WriteMemory(start, m_memory[stack].start))
                return false;
            start = stackEnd();
            if (start >= end)
                break; // the next run may meet this stack, too
        }
        if (start < end && !WriteMemory(start, end))
            return false;
    }
    std::sort(m_memory.begin(), m_memory.end(), byStart);
    return true;
}

bool Writer::WriteMemory(std::uint64_t start, std::uint64_t end) noexcept
{
    if (m_file.Size() > AllReferencedMemory)
        return true;
    Memory memory{start, {0, 0}};
    while (start < end)
    {
        std::size_t const wanted = std::min<std::size_t>(end - start, sizeof m_buffer);
        std::size_t const count = m_map.ReadMemory(start, m_buffer, wanted);
        std::uint32_t const offset =
            memory.location.size ? m_file.AppendTight(m_buffer, count) : m_file.Append(m_buffer, count);
        if (memory.location.size == 0)
            memory.location.offset = offset;
        memory.location.size += static_cast<std::uint32_t>(count);
        if (count < wanted)
            break;
        start += count;
    }
    return memory.location.size == 0 || m_memory.Append(memory);
}

bool Writer::WriteModules() noexcept
{
    RawArray<char> vector;
    if (!RawReadFile(ProcName("/proc/", m_process, "/auxv").Get(), vector))
        return false;
    std::uint64_t entryPoint = 0;
    for (std::size_t offset = 0; offset + sizeof(Elf64_auxv_t) <= vector.Size();
         offset += sizeof(Elf64_auxv_t))
    {
        Elf64_auxv_t entry;
        std::memcpy(&entry, vector.begin() + offset, sizeof entry);
        if (entry.a_type == AT_ENTRY)
            entryPoint = entry.a_un.a_val;
    }
    AddStream(StreamType::LinuxAuxiliaryVector,
              {static_cast<std::uint32_t>(vector.Size()), m_file.Append(vector.begin(), vector.Size())});

    RawArray<MappedModule> modules;
    RawArray<minidump::Module> entries;
    if (!m_map.FindModules(entryPoint, modules))
        return false;
    for (MappedModule const &module : modules)
    {
        minidump::Module entry{};
        entry.base = module.base;
        entry.size = static_cast<std::uint32_t>(module.size);
        entry.nameOffset = WriteString(module.name);
        if (module.buildIdSize)
        {
            std::uint32_t const signature = minidump::BuildIdSignature;
            entry.identity = {static_cast<std::uint32_t>(sizeof signature) + module.buildIdSize,
                              m_file.Append(&signature, sizeof signature)};
            m_file.AppendTight(module.buildId, module.buildIdSize);
        }
        if (!entries.Append(entry))
            return false;
    }
    AddList(StreamType::ModuleList, entries);
    return true;
}

/// Bytes that are not UTF-8 become U+FFFD. A line end in the name of a file is `\012` in /proc, and stays so.
std::uint32_t Writer::WriteString(std::string_view text) noexcept
{
    constexpr std::size_t longest = sizeof m_buffer / (sizeof(char16_t)) - 4;
    auto const units = reinterpret_cast<char16_t *>(m_buffer);
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size() && count < longest;)
    {
        auto const byte = [&](std::size_t index)
        { return index < text.size() ? static_cast<unsigned char>(text[index]) : 0u; };
        unsigned const lead = byte(i++);
        unsigned const following = lead < 0xC2 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF5 ? 3 : 0;
        char32_t point = following ? lead & (0x3Fu >> following) : lead < 0x80 ? lead : 0xFFFD;
        bool good = true;
        for (unsigned k = 0; k < following && good; ++k)
        {
            good = (byte(i + k) & 0xC0) == 0x80;
            point = point << 6 | (byte(i + k) & 0x3F);
        }
        constexpr char32_t least[] = {0, 0x80, 0x800, 0x10000};
        good = good && point >= least[following] && point <= 0x10FFFF && (point & ~char32_t{0x7FF}) != 0xD800;
        i += good ? following : 0;
        point = good ? point : 0xFFFD;
        if (point >= 0x10000)
        {
            units[count++] = static_cast<char16_t>(0xD7C0 + (point >> 10));
            point = 0xDC00 + (point & 0x3FF);
        }
        units[count++] = static_cast<char16_t>(point);
    }
    units[count] = 0;
    auto const size = static_cast<std::uint32_t>(count * sizeof *units);
    std::uint32_t const offset = m_file.Append(&size, sizeof size);
    m_file.AppendTight(units, size + sizeof *units);
    return offset;
}

void Writer::WriteException() noexcept
{
    m_exception.code = minidump::ExceptionNone;
    if (m_crashed)
    {
        siginfo_t const &signal = *m_crashed->signal;
        m_exception.code = static_cast<std::uint32_t>(signal.si_signo);
        m_exception.flags = static_cast<std::uint32_t>(signal.si_code);
        // Of signals that a process has sent, there is the sender in that place.
        if (signal.si_code > 0)
            std::memcpy(&m_exception.address, &signal.si_addr, sizeof m_exception.address);
    }
    AddStream(StreamType::Exception, {sizeof m_exception, m_file.Append(&m_exception, sizeof m_exception)});
}

void Writer::WriteSystemInfo() noexcept
{
    minidump::SystemInfo info{};
    info.architecture = minidump::ArchitectureAmd64;
    info.platform = minidump::PlatformLinux;
    unsigned signature = 0, features = 0, extended = 0, unused = 0;
    __get_cpuid(0, &unused, &info.vendor[0], &info.vendor[2], &info.vendor[1]);
    __get_cpuid(1, &signature, &unused, &unused, &features);
    __get_cpuid(0x80000001, &unused, &unused, &unused, &extended);
    unsigned const family = signature >> 8 & 0xF;
    info.processorLevel =
        static_cast<std::uint16_t>(family == 0xF ? family + (signature >> 20 & 0xFF) : family);
    unsigned const model = (signature >> 12 & 0xF0) | (signature >> 4 & 0xF);
    info.processorRevision = static_cast<std::uint16_t>(model << 8 | (signature & 0xF));
    info.versionInformation = signature;
    info.featureInformation = features;
    info.extendedFeatures = extended;

    std::uint64_t processors[16] = {};
    RawWord const size = RawCall(SYS_sched_getaffinity, m_process, sizeof processors, processors);
    int count = 0;
    for (RawWord i = 0; i < size / 8; ++i)
        count += __builtin_popcountll(processors[i]);
    info.processorCount = static_cast<std::uint8_t>(std::min(count, 255));

    utsname system{};
    RawCall(SYS_uname, &system);
    std::uint32_t *const numbers[] = {&info.majorVersion, &info.minorVersion, &info.buildNumber};
    char const *digit = system.release;
    for (std::uint32_t *const number : numbers)
    {
        for (; *digit >= '0' && *digit <= '9'; ++digit)
            *number = *number * 10 + static_cast<std::uint32_t>(*digit - '0');
        digit += *digit == '.';
    }
    ProcName const text(system.sysname, " ", system.release);
    info.versionTextOffset = WriteString(text.Get());
    AddStream(StreamType::SystemInfo, {sizeof info, m_file.Append(&info, sizeof info)});
}

bool Writer::WriteTexts() noexcept
{
    minidump::MiscInfo misc{};
    misc.size = sizeof misc;
    misc.flags = minidump::MiscInfoHasProcessId;
    misc.processId = static_cast<std::uint32_t>(m_process);
    AddStream(StreamType::MiscInfo, {sizeof misc, m_file.Append(&misc, sizeof misc)});

    RawArray<char> status;
    if (!RawReadFile(ProcName("/proc/", m_process, "/status").Get(), status))
        return false;
    AddStream(StreamType::LinuxStatus,
              {static_cast<std::uint32_t>(status.Size()), m_file.Append(status.begin(), status.Size())});
    RawArray<char> const &maps = m_map.Text();
    AddStream(StreamType::LinuxMaps,
              {static_cast<std::uint32_t>(maps.Size()), m_file.Append(maps.begin(), maps.Size())});
    return true;
}

void Writer::AddStream(StreamType type, Location location) noexcept
{
    m_directory[m_streamCount++] = {type, location};
}

/// A list is its length, and then its elements.
template <class T>
void Writer::AddList(StreamType type, RawArray<T> const &list) noexcept
{
    auto const count = static_cast<std::uint32_t>(list.Size());
    auto const size = static_cast<std::uint32_t>(list.Size() * sizeof(T));
    std::uint32_t const offset = m_file.Append(&count, sizeof count);
    m_file.AppendTight(list.begin(), size);
    AddStream(type, {static_cast<std::uint32_t>(sizeof count) + size, offset});
}

/// A writer at work for a process that waits for it.
struct Job
{
    template <class... Arguments>
    explicit Job(Arguments... arguments) noexcept : writer(arguments...)
    {
    }

    std::atomic<std::int32_t> child{0}; ///< the kernel clears it when the child has ended
    std::atomic<std::uint32_t> mayBegin{0};
    Writer writer;
};

static_assert(std::is_standard_layout_v<std::atomic<std::int32_t>> &&
                  std::atomic<std::int32_t>::is_always_lock_free,
              "the kernel writes the word as it lies in memory");

constexpr std::size_t PageSize = 4096;
constexpr std::size_t ChildStackSize = 256 << 10;

/// One dump at a time: the threads that one child has stopped are out of reach for another. Not a lock that a
/// crash could find taken for ever: whoever has waited for a while goes on.
class Turn
{
public:
    Turn() noexcept
    {
        for (int i = 0; i < 3000 && !m_isTaken; ++i)
        {
            m_isTaken = !s_isTaken.exchange(true, std::memory_order_acquire);
            if (!m_isTaken)
                RawSleepMicroseconds(1000);
        }
    }

    Turn(Turn const &) = delete;
    Turn &operator=(Turn const &) = delete;

    ~Turn()
    {
        if (m_isTaken)
            s_isTaken.store(false, std::memory_order_release);
    }

private:
    static inline std::atomic<bool> s_isTaken{false};
    bool m_isTaken = false;
};

void RunChild(void *argument) noexcept
{
    Job &job = *static_cast<Job *>(argument);
    RawCall(SYS_prctl, PR_SET_PDEATHSIG, SIGKILL);
    while (job.mayBegin.load(std::memory_order_acquire) == 0)
        RawCall(SYS_futex, &job.mayBegin, FUTEX_WAIT, 0, nullptr);
    // A process may always read its own memory, which is that of its parent.
    job.writer.Write(static_cast<int>(RawCall(SYS_getpid)));
}

/// Whether only those that a process names, and its ancestors, may trace it.
bool TracersAreNamed() noexcept
{
    RawFile const file(
        RawCall(SYS_openat, AT_FDCWD, "/proc/sys/kernel/yama/ptrace_scope", O_RDONLY | O_CLOEXEC, 0));
    char scope = '0';
    return file && RawCall(SYS_read, file.Get(), &scope, 1) == 1 && scope == '1';
}

void RunInChild(Job &job, std::byte *stackEnd) noexcept
{
    // Without the files of this process, as they would stay open if the child was killed.
    constexpr RawWord Flags = CLONE_PARENT_SETTID | CLONE_CHILD_CLEARTID;
    RawWord const child = MakeBareProcess(Flags, stackEnd, &RunChild, &job, &job.child);
    if (child < 0)
        return;
    bool const isNamed = TracersAreNamed();
    if (isNamed)
        RawCall(SYS_prctl, PR_SET_PTRACER, child);
    job.mayBegin.store(1, std::memory_order_release);
    RawCall(SYS_futex, &job.mayBegin, FUTEX_WAKE, 1);
    while (std::int32_t const id = job.child.load(std::memory_order_acquire))
        RawCall(SYS_futex, &job.child, FUTEX_WAIT, id, nullptr);
    // The word is cleared a moment before the kernel is done with the child.
    while (RawCall(SYS_wait4, child, nullptr, __WCLONE, nullptr) == -EINTR)
        continue;
    if (isNamed)
        RawCall(SYS_prctl, PR_SET_PTRACER, 0);
}

} // namespace

bool WriteOwnMinidump(char const *fileName, CrashDumpType type, CrashedThread const *crashed) noexcept
{
    // A handler that ran now could wait for a thread that stands still, and the child is to have none at all.
    BlockedSignals const signalsBlocked;
    Turn const turn;
    RawPages const pages(ChildStackSize + sizeof(Job));
    if (!pages || RawCall(SYS_mprotect, pages.Data(), PageSize, PROT_NONE) < 0)
        return false;
    std::byte *const stackEnd = pages.Data() + ChildStackSize;
    auto const process = static_cast<int>(RawCall(SYS_getpid));
    auto const self = static_cast<int>(RawCall(SYS_gettid));
    auto const job = new (stackEnd) Job(process, self, type, crashed);
    if (job->writer.Begin(fileName))
        RunInChild(*job, stackEnd);
    bool const succeeded = job->writer.Commit();
    job->~Job();
    return succeeded;
}

bool WriteMinidump(int processId, char const *fileName, CrashDumpType type,
                   CrashedThread const *crashed) noexcept
{
    BlockedSignals const signalsBlocked; // one comes where the file gets too large
    RawPages const pages(sizeof(Job));
    if (!pages)
        return false;
    auto const job = new (pages.Data()) Job(processId, processId, type, crashed);
    if (job->writer.Begin(fileName))
        job->writer.Write(processId);
    bool const succeeded = job->writer.Commit();
    job->~Job();
    return succeeded;
}

} // namespace vansys::detail
