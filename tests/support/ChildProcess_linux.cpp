#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace
{

/// Owns a file descriptor. The library's own such class is hidden from most tests.
class Handle
{
public:
    explicit Handle(int descriptor = -1) : m_descriptor(descriptor) {}
    Handle(Handle &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    Handle &operator=(Handle &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~Handle()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    int Get() const { return m_descriptor; }

private:
    int m_descriptor;
};

std::vector<char *> Pointers(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

struct ChildProcess::Process
{
    pid_t id = 0;
    Handle ended; ///< readable when the process has ended
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
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = setup.environment;
    for (char **variable = environ; *variable != nullptr; ++variable)
        variables.emplace_back(*variable);
    std::vector<char *> const argv = Pointers(words);
    std::vector<char *> const envp = Pointers(variables);

    int output[2] = {};
    int input[2] = {};
    ASSERT_EQ(pipe2(output, O_CLOEXEC), 0);
    m_process->output = Handle(output[0]);
    Handle const outputOfChild(output[1]);
    ASSERT_EQ(pipe2(input, O_CLOEXEC), 0);
    m_process->input = Handle(input[1]);
    Handle const inputOfChild(input[0]);

    pid_t const id = fork();
    if (id == 0)
    {
        dup2(input[0], STDIN_FILENO);
        dup2(output[1], STDOUT_FILENO);
        dup2(output[1], STDERR_FILENO);
        rlimit const none{};
        setrlimit(RLIMIT_CORE, &none);
        if (setup.prepare)
            setup.prepare();
        execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    ASSERT_GT(id, 0) << std::strerror(errno);
    m_process->id = id;
    m_process->ended = Handle(static_cast<int>(syscall(SYS_pidfd_open, id, 0)));
    ASSERT_GE(m_process->ended.Get(), 0) << std::strerror(errno);
    fcntl(output[0], F_SETFL, O_NONBLOCK);
}

ChildProcess::~ChildProcess()
{
    Kill();
}

unsigned ChildProcess::Id() const
{
    return static_cast<unsigned>(m_process->id);
}

void ChildProcess::CloseInput()
{
    m_process->input = Handle();
}

void ChildProcess::Kill()
{
    if (m_process->id == 0 || m_result.hasEnded)
        return;
    kill(m_process->id, SIGKILL);
    while (waitpid(m_process->id, nullptr, 0) < 0 && errno == EINTR)
    {
    }
    m_process->id = 0;
}

bool ChildProcess::Read(std::chrono::steady_clock::time_point deadline)
{
    if (m_process->id == 0 || m_result.hasEnded)
        return false;

    auto const left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd waited[] = {{m_process->output.Get(), POLLIN, 0}, {m_process->ended.Get(), POLLIN, 0}};
    poll(waited, 2, static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0)));

    // Whether the process has ended is asked first: what it wrote is then in the pipe.
    int status = 0;
    bool const hasEnded = waitpid(m_process->id, &status, WNOHANG) == m_process->id;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = read(m_process->output.Get(), buffer, sizeof(buffer))) > 0)
        m_output.append(buffer, static_cast<std::size_t>(count));
    if (count == 0)
        m_process->output = Handle(); // all writers have closed it; poll passes over what is negative
    if (hasEnded)
    {
        m_result.hasEnded = true;
        m_result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        m_result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    return !hasEnded;
}
