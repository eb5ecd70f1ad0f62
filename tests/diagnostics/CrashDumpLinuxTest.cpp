#include "diagnostics/DebuggerStacks.h"
#include "diagnostics/MinidumpReader.h"
#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

#include <vansys/TStackWalker.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

int Dump(TProcessHandle process, unsigned id, std::u16string const &file)
{
    return TStackWalker::WriteCrashDump(process, id, file.c_str(), CrashDumpType::Stacks);
}

TProcessHandle const Own = TProcessHandle(-1);

unsigned OwnId()
{
    return static_cast<unsigned>(getpid());
}

int DumpItself(std::u16string const &file)
{
    return Dump(Own, OwnId(), file);
}

void ExpectFourThreads(std::filesystem::path const &file, unsigned process, char const *mainFunction)
{
    std::string const contents = TemporaryFolder::Contents(file);
    MinidumpReport const report = ReadMinidump(contents);
    EXPECT_EQ(report.fault, "");
    EXPECT_EQ(report.processId, process);
    EXPECT_EQ(report.exceptionCode, 0xFFFFFFFFu);
    EXPECT_EQ(report.exceptionThread, process);
    EXPECT_NE(report.modules.at(0).find("dumped_program"), std::string::npos);
    EXPECT_GT(report.identifiedModules, 0u);
#if !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
    EXPECT_EQ(report.threads.size(), 4u);
    EXPECT_LE(contents.size(), 300u << 10);
#endif
    ExpectStacksInDebugger(file.string(),
                           {{mainFunction}, {"SitInCall"}, {"SitInHandler", "RaiseSignal"}, {"Recurse"}});
}

TEST(CrashDumpLinuxTest, ShowsTheThreadsOfTheCallingProcess)
{
    TemporaryFolder const folder;
    std::string const file = folder.Path() / "dump";
    std::size_t parts[2];
    for (int i = 0; i < 2; ++i)
    {
        ChildProcess program(VANSYS_HELPER_DUMPED_PROGRAM, {"dump", file, i == 0 ? "0" : "64"});
        ASSERT_TRUE(program.Wait().Exited(0)) << program.Output();
        ExpectFourThreads(file, program.Id(), "DumpItself");
        parts[i] = ReadMinidump(folder.Contents(file)).memoryParts;
    }
    EXPECT_LT(parts[0], parts[1]);
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
}

TEST(CrashDumpLinuxTest, ShowsTheThreadsOfAnotherProcessAndDoesNotDisturbThem)
{
    TemporaryFolder const folder;
    std::filesystem::path const file = folder.Path() / "dump";
    ChildProcess program(VANSYS_HELPER_DUMPED_PROGRAM, {"wait"});
    ASSERT_TRUE(program.WaitForOutput("ready"));
    long const descriptor = syscall(SYS_pidfd_open, program.Id(), 0);
    auto const process = TProcessHandle(descriptor);
    EXPECT_EQ(Dump(process, program.Id() + 1, file.u16string()), 0);
    EXPECT_NE(Dump(process, program.Id(), file.u16string()), 0);
    ExpectFourThreads(file, program.Id(), "WaitForInput");
    program.CloseInput();
    EXPECT_TRUE(program.Wait().Exited(0));

    EXPECT_EQ(Dump(process, program.Id(), (folder.Path() / "none").u16string()), 0);
    EXPECT_EQ(folder.Count(), 1);
    close(static_cast<int>(descriptor));
}

TEST(CrashDumpLinuxTest, LeavesNothingBehindOnFailure)
{
    TemporaryFolder const folder;
    std::string const file = folder.Path() / "dump";
    std::ofstream(file) << "before";
    std::pair<int, char const *> const limits[] = {
        {RLIMIT_FSIZE, "0"}, {RLIMIT_FSIZE, "70000"}, {RLIMIT_NOFILE, "3"}, {RLIMIT_AS, "1"}};
    for (auto const &[resource, limit] : limits)
    {
        ChildProcess program(VANSYS_HELPER_DUMPED_PROGRAM,
                             {"dump", file, "0", std::to_string(resource), limit});
        EXPECT_TRUE(program.Wait().Exited(1)) << resource << " limited to " << limit << program.Output();
        EXPECT_EQ(folder.Contents(file), "before");
        EXPECT_EQ(folder.Count(), 1);
    }
    std::string const pipe = folder.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (std::filesystem::path const name : {pipe, std::string("/proc/dump"), file + "/dump", std::string()})
        EXPECT_EQ(DumpItself(name.u16string()), 0) << name;
    EXPECT_EQ(DumpItself(u"\xD800"), 0);
    EXPECT_EQ(DumpItself(folder.Path().u16string()), 0);
    TCodeUnit const *const none = nullptr;
    EXPECT_EQ(TStackWalker::WriteCrashDump(Own, OwnId(), none, CrashDumpType::Stacks), 0);
    EXPECT_EQ(Dump(Own, OwnId() + 1, (folder.Path() / "other").u16string()), 0);
    EXPECT_EQ(Dump(nullptr, OwnId(), (folder.Path() / "other").u16string()), 0);
    EXPECT_EQ(folder.Count(), 2);
}

TEST(CrashDumpLinuxTest, FindsTheFileByAnyName)
{
    TemporaryFolder const folder;
    EXPECT_NE(DumpItself(folder.Path().u16string() + u"\\\u00E9\u20AC\xD83D\xDE00\xDCFF"), 0);
    EXPECT_TRUE(exists(folder.Path() / "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xFF"));
    std::wstring const wide = folder.Path().wstring() + L"\\\x1F600";
    EXPECT_NE(TStackWalker::WriteCrashDump(Own, OwnId(), wide.c_str(), CrashDumpType::Stacks), 0);
    EXPECT_TRUE(exists(folder.Path() / "\xF0\x9F\x98\x80"));
    EXPECT_EQ(folder.Count(), 2);
}

TEST(CrashDumpLinuxTest, GoesOnWithoutAThreadThatDoesNotStop)
{
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "sanitizers make another call of vfork";
#else
    TemporaryFolder const folder;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::atomic<int> id{0};
    // A thread stands in vfork, deaf to everything, until the child has ended.
    auto const standInVfork = [&]
    {
        id = gettid();
        if (vfork() != 0)
            return;
        close(ends[1]);
        char ignored;
        _exit(static_cast<int>(read(ends[0], &ignored, 1)));
    };
    std::thread deaf(standInVfork);
    while (folder.Contents("/proc/self/task/" + std::to_string(id) + "/status").find("State:\tD") ==
           std::string::npos)
        std::this_thread::yield();

    std::filesystem::path const file = folder.Path() / "dump";
    EXPECT_NE(DumpItself(file.u16string()), 0);
    MinidumpReport const report = ReadMinidump(folder.Contents(file));
    EXPECT_EQ(report.fault, "");
    EXPECT_FALSE(report.threads.empty());
    EXPECT_EQ(std::ranges::count(report.threads, static_cast<unsigned>(id.load())), 0);
    close(ends[1]);
    deaf.join();
    close(ends[0]);
#endif
}

} // namespace
