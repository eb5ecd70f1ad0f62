#include "main/diagnostics/MinidumpWriter.h"
#include "vansys/TStackWalker.h"

#include <fstream>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <type_traits>
#include <unistd.h>

namespace
{

/// Appends the code point to the name of a file. A unit that stands for one byte becomes that byte; other
/// surrogates, and numbers that are no code points, name nothing.
bool AppendCodePoint(std::string &name, char32_t point)
{
    auto const append = [&](char32_t byte) { name += static_cast<char>(byte); };
    auto const appendRest = [&](unsigned shift) { append(0x80 | (point >> shift & 0x3F)); };
    if (point < 0x80)
    {
        append(point == U'\\' ? U'/' : point);
    }
    else if (point < 0x800)
    {
        append(0xC0 | point >> 6);
        appendRest(0);
    }
    else if (point >= 0xDC80 && point <= 0xDCFF)
    {
        append(point & 0xFF);
    }
    else if (point < 0x10000 && (point & ~char32_t{0x7FF}) != 0xD800)
    {
        append(0xE0 | point >> 12);
        appendRest(6);
        appendRest(0);
    }
    else if (point >= 0x10000 && point <= 0x10FFFF)
    {
        append(0xF0 | point >> 18);
        appendRest(12);
        appendRest(6);
        appendRest(0);
    }
    else
    {
        return false;
    }
    return true;
}

/// The name of a file as the system has it; empty for text that names none.
template <class Unit>
std::string ToFileName(Unit const *text)
{
    std::string name;
    while (text && *text)
    {
        auto point = static_cast<char32_t>(*text++);
        if (std::is_same_v<Unit, char16_t> && point >> 10 == 0xD800 >> 10 && *text >> 10 == 0xDC00 >> 10)
            point = 0x10000 + ((point & 0x3FF) << 10 | (static_cast<char32_t>(*text++) & 0x3FF));
        if (!AppendCodePoint(name, point))
            return {};
    }
    return name;
}

/// Whether the file descriptor is of that process, and the process is there.
bool IsOfProcess(std::intptr_t descriptor, unsigned processId)
{
    std::ifstream description("/proc/self/fdinfo/" + std::to_string(descriptor));
    constexpr std::string_view label = "Pid:\t";
    for (std::string line; std::getline(description, line);)
        if (line.compare(0, label.size(), label) == 0)
            return line.substr(label.size()) == std::to_string(processId);
    return false;
}

/// By a thread that ends afterwards: none of the process's threads can stay frozen then.
bool WriteByThread(int processId, char const *fileName, CrashDumpType type)
{
    bool succeeded = false;
    std::thread([&] { succeeded = vansys::detail::WriteMinidump(processId, fileName, type); }).join();
    return succeeded;
}

template <class Unit>
int WriteDump(TProcessHandle process, unsigned processId, Unit const *fileName, CrashDumpType type)
{
    auto const own = static_cast<unsigned>(getpid());
    auto const handle = reinterpret_cast<std::intptr_t>(process);
    try
    {
        std::string const name = ToFileName(fileName);
        if (!(handle == -1 ? processId == own : IsOfProcess(handle, processId)))
            return 0;
        return processId == own ? vansys::detail::WriteOwnMinidump(name.c_str(), type)
                                : WriteByThread(static_cast<int>(processId), name.c_str(), type);
    }
    catch (std::bad_alloc const &)
    {
        return 0;
    }
    catch (std::system_error const &) // there is no further thread
    {
        return 0;
    }
}

} // namespace

int TStackWalker::WriteCrashDump(TProcessHandle process, unsigned processId, TCodeUnit const *fileName,
                                 CrashDumpType type)
{
    return WriteDump(process, processId, fileName, type);
}

int TStackWalker::WriteCrashDump(TProcessHandle process, unsigned processId, TWideTwin const *fileName,
                                 CrashDumpType type)
{
    return WriteDump(process, processId, fileName, type);
}
