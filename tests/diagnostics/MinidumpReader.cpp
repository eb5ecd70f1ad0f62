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
        Require(m_file.starts_with("MDMP\x93\xA7"), "begins with signature and version");
        std::uint64_t const directory = Word(12);
        Claim({directory, 12 * Word(8)});
        for (std::uint64_t entry = directory; entry < directory + 12 * Word(8); entry += 12)
        {
            if (Word(entry) == 0)
                continue; // left free
            Require(m_streams.emplace(Word(entry), Locate(entry + 4)).second, "no stream is there twice");
            Claim(Locate(entry + 4));
        }
        ReadSystem();
        ForEach(5, 16, &Reader::ReadMemory);
        if (m_isLinux) // Wine repeats some
            RequireApart(m_memory, "memory is there once");
        ForEach(3, 48, &Reader::ReadThread);
        ForEach(4, 108, &Reader::ReadModule);
        RequireApart(m_modules, "modules do not overlap");
        ReadException();
        ReadProcess();
        Require(!m_contexts.empty() && !m_modules.empty(), "threads and modules are there");
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

    std::uint64_t Word(std::uint64_t offset) const { return Get<std::uint32_t>(offset); }

    /// A size and an offset.
    Part Locate(std::uint64_t offset) const { return {Word(offset + 4), Word(offset)}; }

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
    void ForEach(std::uint32_t type, std::uint64_t entrySize, void (Reader::*read)(std::uint64_t))
    {
        Part const list = Stream(type);
        Require(list.size == 4 + Word(list.start) * entrySize, "a list is as long as its entries");
        for (std::uint64_t entry = list.start + 4; entry < list.End(); entry += entrySize)
            (this->*read)(entry);
    }

    /// Some of Wine's lack the zero.
    std::string ReadString(std::uint64_t offset, bool hasZero = true)
    {
        std::uint64_t const size = Word(offset);
        Claim({offset, 4 + size + (hasZero ? 2 : 0)});
        Require(size % 2 == 0 && (!hasZero || Get<char16_t>(offset + 4 + size) == 0),
                "strings are UTF-16 and end with zero");
        std::string text;
        bool isHigh = false;
        for (std::uint64_t i = 0; i < size; i += 2)
        {
            auto const unit = Get<char16_t>(offset + 4 + i);
            Require(unit != 0 && isHigh == (unit >> 10 == 0x37), "strings have no zeros and no halves");
            isHigh = unit >> 10 == 0x36;
            text += unit < 0x80 ? static_cast<char>(unit) : '?';
        }
        Require(!isHigh, "strings have no zeros and no halves");
        return text;
    }

    void ReadSystem()
    {
        Require(Stream(7).size == 56, "system information has its size");
        std::uint64_t const info = Stream(7).start;
        auto const architecture = Get<std::uint16_t>(info);
        m_isLinux = Word(info + 20) == 0x8201;
        Require(m_isLinux ? architecture == 9 : Word(info + 20) == 2 && architecture == 0,
                "the processor fits");
        Require(!m_isLinux || Get<std::uint8_t>(info + 6) != 0, "there are processors");
        if (auto const version = Word(info + 24))
            ReadString(version, m_isLinux);
    }

    void ReadMemory(std::uint64_t entry)
    {
        m_contents.push_back(Locate(entry + 8));
        Claim(m_contents.back());
        Part const range{Get<std::uint64_t>(entry), m_contents.back().size};
        Require(range.size && range.start <= range.End(), "memory has addresses");
        m_memory.push_back(range);
        m_report.memorySize += range.size;
        ++m_report.memoryParts;
    }

    /// Returns the stack pointer.
    std::uint64_t ReadContext(Part context)
    {
        if (m_isLinux)
        {
            Require(context.size == 1232 && Word(context.start + 0x30) == 0x10000F, "contexts are full");
            Require((Get<std::uint16_t>(context.start + 0x38) & 3) == 3, "threads are not in the kernel");
            Require(Word(context.start + 0x34) == Word(context.start + 0x118), "MXCSR is there twice");
            return Get<std::uint64_t>(context.start + 0x98);
        }
        if (context.size == 0)
            return 0; // Wine's dumps have none of the calling thread
        Require(context.size == 716 && (Word(context.start) & 0x10007) == 0x10007, "contexts are full");
        return Word(context.start + 0xC4);
    }

    void ReadThread(std::uint64_t entry)
    {
        auto const id = Get<std::uint32_t>(entry);
        Part const context = Locate(entry + 40);
        Claim(context);
        Require(id && m_contexts.emplace(id, context.start).second, "ids are unique");
        m_report.threads.push_back(id);
        std::uint64_t const stackPointer = ReadContext(context);
        Part const contents = Locate(entry + 32);
        Part const stack{Get<std::uint64_t>(entry + 24), contents.size};
        if (!m_isLinux && stack.size == 0)
            return;
        bool const mayBeExhausted = m_streams.count(6) && Word(m_streams[6].start) == id &&
                                    Word(m_streams[6].start + 8) != 0xFFFFFFFF;
        Require(stack.Holds({stackPointer, 8}) || (mayBeExhausted && stack.start - stackPointer <= 1 << 20),
                "the stack pointer is in the stack");
        bool isMemory = false;
        for (std::size_t i = 0; i < m_memory.size(); ++i)
            isMemory |= m_memory[i].Holds(stack) && m_contents[i].Holds(contents) &&
                        stack.start - m_memory[i].start == contents.start - m_contents[i].start;
        Require(isMemory, "stacks are memory, too");
    }

    void ReadModule(std::uint64_t entry)
    {
        m_modules.push_back({Get<std::uint64_t>(entry), Word(entry + 8)});
        m_report.modules.push_back(ReadString(Word(entry + 20)));
        Require(m_modules.back().size && !m_report.modules.back().empty(), "modules have sizes and names");
        Part const identity = Locate(entry + 76);
        Claim(identity);
        if (identity.size == 0)
            return;
        ++m_report.identifiedModules;
        Require(!m_isLinux || (Word(identity.start) == 0x4270454C && identity.size > 4),
                "modules have build ids");
    }

    void ReadException()
    {
        if (!m_isLinux && !m_streams.count(6))
            return;
        Require(Stream(6).size == 168, "an exception has its size");
        std::uint64_t const exception = Stream(6).start;
        m_report.exceptionThread = Get<std::uint32_t>(exception);
        m_report.exceptionCode = Get<std::uint32_t>(exception + 8);
        Part const context = Locate(exception + 160);
        auto const thread = m_contexts.find(m_report.exceptionThread);
        Require(thread != m_contexts.end() && (context.start == thread->second || !m_isLinux),
                "an exception is of a thread");
        ReadContext(context);
    }

    void ReadProcess()
    {
        Part const misc = Stream(15);
        Require(misc.size >= 24 && Word(misc.start) <= misc.size && Word(misc.start + 4) & 1,
                "the id is there");
        m_report.processId = Get<std::uint32_t>(misc.start + 8);
        if (!m_isLinux)
            return;
        std::string const id = "\nPid:\t" + std::to_string(m_report.processId) + "\n";
        Require(Text(0x47670004).find(id) != std::string_view::npos, "the status is that of the process");
        std::string_view const vector = Text(0x47670008);
        Require(vector.size() % 16 == 0 && vector.ends_with(std::string(16, '\0')),
                "the auxiliary vector ends with zeros");
        std::string_view const maps = Text(0x47670009);
        Require(maps.ends_with('\n') && maps.find('\0') == std::string_view::npos &&
                    maps.find("[stack]\n") != std::string_view::npos,
                "the maps are whole");
    }

    std::string_view m_file;
    MinidumpReport &m_report;
    bool m_isLinux = false;
    std::vector<Part> m_claimed;
    std::vector<Part> m_memory;   ///< as addresses
    std::vector<Part> m_contents; ///< the same, in the file
    std::vector<Part> m_modules;
    std::map<std::uint64_t, Part> m_streams;
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
