#include "support/ChildProcess.h"

ChildProcess::ChildProcess(std::string const &program, std::vector<std::string> const &arguments)
    : ChildProcess(program, arguments, Setup())
{
}

bool ChildProcess::WaitForOutput(std::string_view text, std::chrono::milliseconds limit)
{
    auto const deadline = std::chrono::steady_clock::now() + limit;
    bool runs = true;
    while (m_output.find(text) == std::string::npos)
    {
        if (!runs || std::chrono::steady_clock::now() >= deadline)
            return false;
        runs = Read(deadline);
    }
    return true;
}

ChildProcess::Result ChildProcess::Wait(std::chrono::milliseconds limit)
{
    auto const deadline = std::chrono::steady_clock::now() + limit;
    while (Read(deadline))
    {
        if (std::chrono::steady_clock::now() >= deadline)
        {
            Kill();
            return {};
        }
    }
    return m_result;
}
