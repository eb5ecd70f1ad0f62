#include "Rows.h"

#include "vansys/TStackWalker.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench
{

namespace
{

/// A process of four threads that do nothing, and a folder for its dumps.
class DumpedProcess
{
public:
    static DumpedProcess &Get()
    {
        static DumpedProcess process;
        return process;
    }

    DumpedProcess(DumpedProcess const &) = delete;
    DumpedProcess &operator=(DumpedProcess const &) = delete;

    ~DumpedProcess()
    {
        kill(m_id, SIGKILL);
        waitpid(m_id, nullptr, 0);
        close(m_handle);
        std::filesystem::remove_all(m_folder);
        if (ownSize && peerSize)
            std::printf("\nSizes of the dumps: vansys %llu KiB, gcore %llu KiB, ratio %.0f x\n",
                        ownSize / 1024, peerSize / 1024,
                        static_cast<double>(peerSize) / static_cast<double>(ownSize));
    }

    pid_t Id() const { return m_id; }
    TProcessHandle Handle() const
    {
        return reinterpret_cast<TProcessHandle>(static_cast<std::intptr_t>(m_handle));
    }
    std::filesystem::path const &Folder() const { return m_folder; }

    unsigned long long ownSize = 0;
    unsigned long long peerSize = 0;

private:
    DumpedProcess()
    {
        m_folder = std::filesystem::temp_directory_path() / ("vansys-bench-" + std::to_string(getpid()));
        std::filesystem::create_directory(m_folder);
        int ready[2];
        if (pipe2(ready, O_CLOEXEC) != 0)
            std::abort();
        m_id = fork();
        if (m_id == 0)
        {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            for (int i = 0; i < 3; ++i)
                std::thread([] { pause(); }).detach();
            close(ready[1]);
            close(ready[0]);
            pause();
            _exit(0);
        }
        close(ready[1]);
        char ignored = 0;
        if (read(ready[0], &ignored, 1) != 0) // ends with the last copy of the other end
            std::abort();
        close(ready[0]);
        m_handle = static_cast<int>(syscall(SYS_pidfd_open, m_id, 0));
    }

    pid_t m_id = 0;
    int m_handle = -1;
    std::filesystem::path m_folder;
};

void DumpByLibrary(benchmark::State &state)
{
    DumpedProcess &process = DumpedProcess::Get();
    std::filesystem::path const file = process.Folder() / "dump";
    for (auto _ : state)
        if (!TStackWalker::WriteCrashDump(process.Handle(), static_cast<unsigned>(process.Id()),
                                          file.u16string().c_str(), CrashDumpType::Stacks))
            state.SkipWithError("no dump");
    if (exists(file))
        process.ownSize = file_size(file);
}

void DumpByGcore(benchmark::State &state)
{
    DumpedProcess &process = DumpedProcess::Get();
    std::string const prefix = process.Folder() / "core";
    std::string const id = std::to_string(process.Id());
    for (auto _ : state)
    {
        posix_spawn_file_actions_t silence;
        posix_spawn_file_actions_init(&silence);
        posix_spawn_file_actions_addopen(&silence, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&silence, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        char const *const arguments[] = {"gcore", "-o", prefix.c_str(), id.c_str(), nullptr};
        pid_t child = 0;
        int status = -1;
        if (posix_spawnp(&child, "gcore", &silence, nullptr, const_cast<char *const *>(arguments), environ) !=
                0 ||
            waitpid(child, &status, 0) != child || status != 0)
            state.SkipWithError("no core file");
        posix_spawn_file_actions_destroy(&silence);
    }
    std::filesystem::path const file = prefix + "." + id;
    if (exists(file))
        process.peerSize = file_size(file);
}

} // namespace

void AddCrashDumpRows(Rows &rows)
{
    Row const row{"Crash dumps", "dump of a process of 4 threads", Target{10.0, {"gcore"}}};
    rows.push_back(row);
    AddWallTimeCase(row, OwnName, &DumpByLibrary);
    if (std::system("command -v gcore >/dev/null") == 0)
        AddWallTimeCase(row, "gcore", &DumpByGcore);
    else
        benchmark::AddCustomContext("gcore", "left out: gdb is not installed");
}

} // namespace bench
