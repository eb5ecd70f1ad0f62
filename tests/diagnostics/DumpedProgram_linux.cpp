// What CrashDumpLinuxTest looks at: four threads, each busy with something else.
#include <vansys/TStackWalker.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <thread>

#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

// Visible outside: of other functions, compilers make variants, by other names.
namespace dumped
{

std::atomic<int> g_readyThreads{0};
std::atomic<bool> g_isDisturbed{false};

[[gnu::noinline]] void SitInCall()
{
    ++g_readyThreads;
    poll(nullptr, 0, -1); // for ever, so that nothing but a disturbance ends it
    g_isDisturbed = true;
}

[[gnu::noinline]] void SitInHandler(int)
{
    ++g_readyThreads;
    for (;;)
        pause();
}

[[gnu::noinline]] void RaiseSignal()
{
    static char stack[1 << 16];
    stack_t const handlers{.ss_sp = stack, .ss_flags = 0, .ss_size = sizeof stack};
    sigaltstack(&handlers, nullptr);
    struct sigaction action = {};
    action.sa_handler = &SitInHandler;
    action.sa_flags = SA_ONSTACK;
    sigaction(SIGUSR1, &action, nullptr);
    raise(SIGUSR1);
    g_isDisturbed = true;
}

[[gnu::noinline]] int Recurse(int depth)
{
    char volatile room[64] = {};
    if (depth > 0)
        return Recurse(depth - 1) + room[0];
    ++g_readyThreads;
    while (!g_isDisturbed)
        room[1] = room[0];
    return 0;
}

[[gnu::noinline]] int DumpItself(int count, char **arguments)
{
    if (count == 6)
    {
        auto const limit = static_cast<rlim_t>(std::atoi(arguments[5]));
        rlimit const limits{limit, limit};
        setrlimit(static_cast<__rlimit_resource>(std::atoi(arguments[4])), &limits);
    }
    static wchar_t name[4096];
    std::mbstowcs(name, arguments[2], std::size(name) - 1);
    int const result = TStackWalker::WriteCrashDump(TProcessHandle(-1), static_cast<unsigned>(getpid()), name,
                                                    static_cast<CrashDumpType>(std::atoi(arguments[3])));
    ++g_readyThreads; // or the call above would not be on the stack as one of this function
    return result;
}

[[gnu::noinline]] void WaitForInput()
{
    std::puts("ready");
    std::fflush(stdout);
    char ignored = 0;
    if (read(STDIN_FILENO, &ignored, 1) != 0)
        g_isDisturbed = true;
}

} // namespace dumped

using namespace dumped;

// program wait
// program dump NAME TYPE [RESOURCE LIMIT]
int main(int count, char **arguments)
{
    std::thread(&SitInCall).detach();
    std::thread(&RaiseSignal).detach();
    std::thread(&Recurse, 5000).detach();
    while (g_readyThreads < 3)
        usleep(1000);
    bool succeeded = true;
    if (std::strcmp(arguments[1], "dump") == 0)
        succeeded = DumpItself(count, arguments) != 0;
    else
        WaitForInput();
    _exit(!succeeded ? 1 : g_isDisturbed ? 2 : 0);
}
