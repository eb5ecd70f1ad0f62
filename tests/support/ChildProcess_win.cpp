#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <windows.h>

namespace
{

struct Closer
{
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, Closer>;

/// In quotes. The arguments of tests have neither quotes nor back slashes at their end.
std::string Quoted(std::string const &text)
{
    return '"' + text + '"';
}

/// What the new process has, as one text: each variable ends with a zero.
std::string Environment(std::vector<std::string> const &added)
{
    std::string block;
    for (std::string const &variable : added)
        block += variable + '\0';
    char *const own = GetEnvironmentStringsA();
    for (char const *variable = own; *variable != 0; variable += std::string(variable).size() + 1)
        block += std::string(variable) + '\0';
    FreeEnvironmentStringsA(own);
    return block + '\0';
}

} // namespace

struct ChildProcess::Process
{
    DWORD id = 0;
    Handle process;
    Handle output;
    Handle input;
};

ChildProcess::ChildProcess(std::string const &program, std::vector<std::string> const &arguments,
                           Setup const &setup)
    : m_process(std::make_unique<Process>())
{
    Start(program, arguments, setup);
}

void ChildProcess::Start(std::string const &program, std::vector<std::string> const &arguments,
                         Setup const &setup)
{
    std::string path = program;
    std::replace(path.begin(), path.end(), '/', '\\');
    std::string line = Quoted(path);
    for (std::string const &argument : arguments)
        line += ' ' + Quoted(argument);
    std::string environment = Environment(setup.environment);

    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE pipe[2] = {};
    ASSERT_TRUE(CreatePipe(&pipe[0], &pipe[1], &inherited, 0));
    m_process->output = Handle(pipe[0]);
    Handle const outputOfChild(pipe[1]);
    ASSERT_TRUE(CreatePipe(&pipe[0], &pipe[1], &inherited, 0));
    Handle const inputOfChild(pipe[0]);
    m_process->input = Handle(pipe[1]);
    for (Handle const *const own : {&m_process->output, &m_process->input})
        SetHandleInformation(own->get(), HANDLE_FLAG_INHERIT, 0);

    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = inputOfChild.get();
    startup.hStdOutput = startup.hStdError = outputOfChild.get();
    PROCESS_INFORMATION information{};
    ASSERT_TRUE(CreateProcessA(path.c_str(), line.data(), nullptr, nullptr, TRUE, 0, environment.data(),
                               nullptr, &startup, &information))
        << path << ": error " << GetLastError();
    static_cast<void>(Handle(information.hThread));
    m_process->process = Handle(information.hProcess);
    m_process->id = information.dwProcessId;
}

ChildProcess::~ChildProcess()
{
    Kill();
}

unsigned ChildProcess::Id() const
{
    return m_process->id;
}

void ChildProcess::CloseInput()
{
    m_process->input = Handle();
}

void ChildProcess::Kill()
{
    if (m_process->id == 0 || m_result.hasEnded)
        return;
    TerminateProcess(m_process->process.get(), 1);
    WaitForSingleObject(m_process->process.get(), INFINITE);
    m_process->id = 0;
}

bool ChildProcess::Read(std::chrono::steady_clock::time_point deadline)
{
    if (m_process->id == 0 || m_result.hasEnded)
        return false;

    // An anonymous pipe cannot be waited for: it is looked at every 10 ms.
    auto const left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    auto const slice = std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, 10);
    bool const hasEnded =
        WaitForSingleObject(m_process->process.get(), static_cast<DWORD>(slice)) == WAIT_OBJECT_0;
    char buffer[4096];
    DWORD count = 0;
    while (PeekNamedPipe(m_process->output.get(), nullptr, 0, nullptr, &count, nullptr) && count > 0 &&
           ReadFile(m_process->output.get(), buffer, std::min<DWORD>(count, sizeof(buffer)), &count, nullptr))
        m_output.append(buffer, count);
    if (hasEnded)
    {
        DWORD code = 0;
        GetExitCodeProcess(m_process->process.get(), &code);
        m_result.hasEnded = true;
        m_result.status = static_cast<int>(code);
    }
    return !hasEnded;
}
