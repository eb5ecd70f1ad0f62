#include "diagnostics/MinidumpReader.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <stdexcept>

namespace
{

struct Part
{
    std::uint64_t start;
    std::uint64_t size;
    std::uint64_t End() const { return start + size; }
    bool Holds(Part const &inner) const { return start <= inner.start && inner.End() <= End(); }
};

void Require(bool condition, char const *rule)
{
    if (!condition)
        throw std::runtime_error(rule);
}

void RequireApart(std::vector<Part> parts, char const *rule)
{
    std::sort(parts.begin(), parts.end(), [](Part const &a, Part const &b) { return a.start < b.start; });
    for (std::size_t i = 1; i < parts.size(); ++i)
        Require(parts[i - 1].End() <= parts[i].start, rule);
}

class Reader
{
public:
    Reader(std::string_view file, MinidumpReport &report) : m_file(file), m_report(report) {}

    void Read()
    {
        Claim({0, 32});
        Require(m_file.substr(0, 4) == "MDMP" && Get<std::uint16_t>(4) == 0xA793,
                "begins with signature and version");
        std::uint64_t const count = Get<std::uint32_t>(8);
        std::uint64_t const directory = Get<std::uint32_t>(12);
        Claim({directory, 12 * count});
        for (std::uint64_t i = 0; i < count; ++i)
        {
            auto const type = Get<std::uint32_t>(directory + 12 * i);
            if (type == 0)
                continue; // left free
            Require(m_streams.emplace(type, Locate(directory + 12 * i + 4)).second,
                    "no stream is there twice");
            Claim(m_streams[type]);
        }
        ReadSystem();
        ReadMemory();
        ReadThreads();
        ReadModules();
        ReadException();
        ReadProcess();
        RequireApart(m_claimed, "parts of the file do not overlap");
    }

private:
    template <class T>
    T Get(std::uint64_t offset) const
    {
        Require(offset <= m_file.size() && sizeof(T) <= m_file.size() - offset,
                "offsets are within the file");
        T value;
        std::memcpy(&value, m_file.data() + offset, sizeof value);
        return value;
    }

    /// A size and an offset.
    Part Locate(std::uint64_t offset) const
    {
        return {Get<std::uint32_t>(offset + 4), Get<std::uint32_t>(offset)};
    }

    /// Nothing else may be there.
    void Claim(Part part)
    {
        Require(part.End() <= m_file.size(), "parts are within the file");
        if (part.size)
            m_claimed.push_back(part);
    }

    Part Stream(std::uint32_t type) const
    {
        auto const found = m_streams.find(type);
        Require(found != m_streams.end(), "the streams that are needed are there");
        return found->second;
    }

    std::string_view Text(std::uint32_t type) const
    {
        Part const text = Stream(type);
        return m_file.substr(static_cast<std::size_t>(text.start), static_cast<std::size_t>(text.size));
    }

    /// Calls `read` with the offset of each entry of a list.
    template <class Read>
    void ForEach(std::uint32_t type, std::uint64_t entrySize, Read const &read)
    {
        Part const list = Stream(type);
        std::uint64_t const count = Get<std::uint32_t>(list.start);
        Require(list.size == 4 + count * entrySize, "a list is as long as its entries");
        for (std::uint64_t i = 0; i < count; ++i)
            read(list.start + 4 + i * entrySize);
    }

    /// Some of Wine's lack the zero.
    std::string ReadString(std::uint64_t offset, bool hasZero = true)
    {
        std::uint64_t const size = Get<std::uint32_t>(offset);
        Claim({offset, 4 + size + (hasZero ? 2 : 0)});
        Require(size % 2 == 0 && (!hasZero || Get<char16_t>(offset + 4 + size) == 0),
                "strings are UTF-16 and end with zero");
        std::string text;
        bool isHigh = false;
        for (std::uint64_t i = 0; i <= size; i += 2)
        {
            auto const unit = i < size ? Get<char16_t>(offset + 4 + i) : char16_t{0};
            Require(isHigh == (unit >> 10 == 0x37), "surrogates are in pairs");
            isHigh = unit >> 10 == 0x36;
            Require(i == size || unit != 0, "strings have no zeros");
            if (i < size)
                text += unit < 0x80 ? static_cast<char>(unit) : '?';
        }
        return text;
    }

    void ReadSystem()
    {
        Require(Stream(7).size == 56, "system information has its size");
        std::uint64_t const info = Stream(7).start;
        auto const architecture = Get<std::uint16_t>(info);
        m_report.platform = Get<std::uint32_t>(info + 20);
        m_isLinux = m_report.platform == 0x8201;
        Require(m_isLinux ? architecture == 9 : m_report.platform == 2 && architecture == 0,
                "the processor fits");
        Require(!m_isLinux || Get<std::uint8_t>(info + 6) != 0, "there are processors");
        if (auto const version = Get<std::uint32_t>(info + 24))
            ReadString(version, m_isLinux);
    }

    void ReadMemory()
    {
        ForEach(5, 16,
                [&](std::uint64_t entry)
                {
                    Part const contents = Locate(entry + 8);
                    Part const range{Get<std::uint64_t>(entry), contents.size};
                    Require(range.size && range.start <= range.End(), "memory has addresses");
                    Claim(contents);
                    m_memory.push_back(range);
                    m_contents.push_back(contents);
                    m_report.memorySize += range.size;
                    ++m_report.memoryParts;
                });
        if (m_isLinux) // Wine repeats some
            RequireApart(m_memory, "memory is there once");
    }

    /// Returns the stack pointer.
    std::uint64_t ReadContext(Part context)
    {
        if (m_isLinux)
        {
            Require(context.size == 1232 && Get<std::uint32_t>(context.start + 0x30) == 0x10000F,
                    "contexts are full");
            Require((Get<std::uint16_t>(context.start + 0x38) & 3) == 3, "threads are not in the kernel");
            Require(Get<std::uint32_t>(context.start + 0x34) ==
                        Get<std::uint32_t>(context.start + 0x100 + 24),
                    "MXCSR is there twice");
            return Get<std::uint64_t>(context.start + 0x98);
        }
        if (context.size == 0)
            return 0; // Wine's dumps have none of the calling thread
        Require(context.size == 716 && (Get<std::uint32_t>(context.start) & 0x10007) == 0x10007,
                "contexts are full");
        return Get<std::uint32_t>(context.start + 0xC4);
    }

    void ReadThreads()
    {
        ForEach(3, 48,
                [&](std::uint64_t entry)
                {
                    auto const id = Get<std::uint32_t>(entry);
                    Part const context = Locate(entry + 40);
                    Claim(context);
                    Require(id && m_contexts.emplace(id, context.start).second, "ids are unique");
                    m_report.threads.push_back({id, ReadContext(context)});
                    Part const contents = Locate(entry + 32);
                    CheckStack(m_report.threads.back(), {Get<std::uint64_t>(entry + 24), contents.size},
                               contents);
                });
        Require(!m_contexts.empty(), "threads are there");
    }

    void CheckStack(MinidumpReport::Thread const &thread, Part stack, Part contents)
    {
        if (!m_isLinux && stack.size == 0)
            return;
        auto const hasCrashed = [&](std::uint64_t exception) {
            return Get<std::uint32_t>(exception) == thread.id &&
                   Get<std::uint32_t>(exception + 8) != 0xFFFFFFFF;
        };
        bool const mayBeExhausted = m_streams.count(6) && hasCrashed(m_streams[6].start);
        Require(stack.Holds({thread.stackPointer, 8}) ||
                    (mayBeExhausted && stack.start - thread.stackPointer <= 1 << 20),
                "the stack pointer is in the stack");
        bool isMemory = false;
        for (std::size_t i = 0; i < m_memory.size(); ++i)
            isMemory |= m_memory[i].Holds(stack) && m_contents[i].Holds(contents) &&
                        stack.start - m_memory[i].start == contents.start - m_contents[i].start;
        Require(isMemory, "stacks are memory, too");
    }

    void ReadModules()
    {
        std::vector<Part> modules;
        ForEach(4, 108,
                [&](std::uint64_t entry)
                {
                    modules.push_back({Get<std::uint64_t>(entry), Get<std::uint32_t>(entry + 8)});
                    Require(modules.back().size, "modules have a size");
                    m_report.modules.push_back(ReadString(Get<std::uint32_t>(entry + 20)));
                    Require(!m_report.modules.back().empty(), "modules have names");
                    Part const identity = Locate(entry + 76);
                    Claim(identity);
                    if (identity.size == 0)
                        return;
                    ++m_report.identifiedModules;
                    auto const signature = Get<std::uint32_t>(identity.start);
                    Require(!m_isLinux || (signature == 0x4270454C && identity.size > 4),
                            "modules have build ids");
                });
        Require(!modules.empty(), "modules are there");
        RequireApart(modules, "modules do not overlap");
    }

    void ReadException()
    {
        if (!m_isLinux && !m_streams.count(6))
            return;
        Require(Stream(6).size == 168, "an exception has its size");
        std::uint64_t const exception = Stream(6).start;
        m_report.exceptionThread = Get<std::uint32_t>(exception);
        m_report.exceptionCode = Get<std::uint32_t>(exception + 8);
        m_report.exceptionAddress = Get<std::uint64_t>(exception + 24);
        Part const context = Locate(exception + 160);
        auto const thread = m_contexts.find(m_report.exceptionThread);
        Require(thread != m_contexts.end() && (context.start == thread->second || !m_isLinux),
                "an exception is of a thread");
        ReadContext(context);
    }

    void ReadProcess()
    {
        std::uint64_t const misc = Stream(15).start;
        Require(Stream(15).size >= 24 && Get<std::uint32_t>(misc) <= Stream(15).size &&
                    Get<std::uint32_t>(misc + 4) & 1,
                "the id is there");
        m_report.processId = Get<std::uint32_t>(misc + 8);
        if (!m_isLinux)
            return;
        std::string const id = "\nPid:\t" + std::to_string(m_report.processId) + "\n";
        Require(Text(0x47670004).find(id) != std::string_view::npos, "the status is that of the process");
        std::string_view const vector = Text(0x47670008);
        Require(vector.size() % 16 == 0 && vector.size() >= 16 &&
                    vector.find_first_not_of('\0', vector.size() - 16) == std::string_view::npos,
                "the auxiliary vector ends with zeros");
        std::string_view const maps = Text(0x47670009);
        Require(!maps.empty() && maps.back() == '\n' && maps.find('\0') == std::string_view::npos &&
                    maps.find("[stack]\n") != std::string_view::npos,
                "the maps are whole");
    }

    std::string_view m_file;
    MinidumpReport &m_report;
    bool m_isLinux = false;
    std::vector<Part> m_claimed;
    std::vector<Part> m_memory; ///< as addresses
    std::vector<Part> m_contents;
    std::map<std::uint32_t, Part> m_streams;
    std::map<std::uint32_t, std::uint64_t> m_contexts; ///< of each thread, where its registers are
};

} // namespace

MinidumpReport ReadMinidump(std::string_view file)
{
    MinidumpReport report;
    try
    {
        Reader(file, report).Read();
    }
    catch (std::runtime_error const &broken)
    {
        report.fault = std::string("not so: ") + broken.what();
    }
    return report;
}
