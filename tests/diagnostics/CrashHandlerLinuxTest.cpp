#include "diagnostics/CrashRun.h"
#include "diagnostics/DebuggerStacks.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

TEST(CrashHandler, LetsTheProgramEndAsWithoutIt)
{
    std::pair<char const *, int> const rows[] = {
        {"null", SIGSEGV},  {"division", SIGFPE},  {"abort", SIGABRT}, {"terminate", SIGABRT},
        {"stack", SIGSEGV}, {"together", SIGSEGV}, {"sent", SIGBUS}};
    for (auto const &[kind, signal] : rows)
    {
        CrashRun const run(kind, {"without-dump"});
        EXPECT_TRUE(run.result.WasEndedBy(signal)) << kind << ' ' << run.result.signal;
        EXPECT_TRUE(run.IsTextComplete()) << kind;
        EXPECT_TRUE(run.Files(".dmp").empty());
    }
    // The handler that was there before gets the signal, and what came with it.
    CrashRun const previous("null", {"previous"});
    EXPECT_TRUE(previous.result.Exited(42)) << previous.result.status;
    EXPECT_TRUE(previous.IsTextComplete());
    EXPECT_TRUE(CrashRun("abort", {"previous"}).result.WasEndedBy(SIGABRT));
}

TEST(CrashHandler, WritesWhatCanBeWritten)
{
    auto const setLimit = []
    {
        rlimit const limit{600, 600};
        setrlimit(RLIMIT_FSIZE, &limit);
    };
    CrashRun const fullDisk("null", {}, {{}, setLimit});
    EXPECT_TRUE(fullDisk.result.WasEndedBy(SIGSEGV)) << fullDisk.result.signal;
    EXPECT_EQ(fullDisk.text.size(), 600U);
    EXPECT_EQ(fullDisk.folder.Count(), 1) << "no dump";

    for (char const *const folder : {"/proc", "/nowhere/at/all"})
    {
        CrashRun const run("null", {}, {}, folder);
        EXPECT_TRUE(run.result.WasEndedBy(SIGSEGV));
        EXPECT_TRUE(run.output.ends_with("end of crash report\n")) << run.output;
    }

#if defined(__SANITIZE_ADDRESS__)
    std::printf("not without file descriptors: the address sanitizer opens files in the handler\n");
#else
    CrashRun const noDescriptors("null", {"no-descriptors"});
    EXPECT_TRUE(noDescriptors.IsTextComplete() && noDescriptors.Files(".dmp").size() == 1);
#endif

    CrashRun const toDescriptor("null", {"to-output"});
    EXPECT_TRUE(toDescriptor.output.ends_with("end of crash report\n"));
    EXPECT_TRUE(toDescriptor.Files(".txt").empty());

    // Nobody reads the text, and the handler does not wait for that.
    CrashRun const full("null", {"to-full-pipe"});
    EXPECT_TRUE(full.result.WasEndedBy(SIGSEGV));
    EXPECT_LT(full.duration.count(), 2);
}

TEST(CrashHandler, WritesAddressesWhereThereIsNoCopyOfTheProcess)
{
    // Root has no limit.
    auto const noProcesses = []
    {
        rlimit const none{};
        setrlimit(RLIMIT_NPROC, &none);
        constexpr uid_t Nobody = 65534;
        if (getuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(Nobody) != 0 || setuid(Nobody) != 0))
            _exit(1);
    };
    for (char const *const kind : {"null", "stack"})
    {
        CrashRun const run(kind, {}, {{}, noProcesses});
        EXPECT_TRUE(run.result.WasEndedBy(SIGSEGV));
        EXPECT_TRUE(run.IsTextComplete()) << run.text << run.output;
        EXPECT_NE(run.text.find("(not finished)\n"), run.text.npos);
        EXPECT_NE(run.text.find("stack:\n0x00000000 0x"), run.text.npos);
    }
}

TEST(CrashHandler, WritesDumpsThatADebuggerOpens)
{
    CrashRun const run("terminate");
    ExpectStacksInDebugger(run.Files(".dmp").at(0), {{"ThrowUncaught", "main"}});
    CrashRun const deep("thread-stack");
    ExpectStacksInDebugger(deep.Files(".dmp").at(0), {{"ExhaustStack"}, {"ExhaustStackOfThread", "main"}});
}
