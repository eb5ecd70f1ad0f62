#include "diagnostics/CrashRun.h"
#include "diagnostics/MinidumpReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>

namespace
{

#if defined(_WIN32)
constexpr char const *AccessViolation = "signal: exception 0xC0000005, access violation\naddress: 0x0\n";
constexpr char const *Abort = "signal: exception 0x40000015, abort\n";
constexpr char const *EveryKind[] = {"null", "terminate"};
constexpr int FewCrashes = 4;
#else
constexpr char const *AccessViolation =
    "signal: SIGSEGV (11), there is no memory at the address\naddress: 0x0\n";
constexpr char const *Abort = "signal: SIGABRT (6), raised by the program itself\n";
#    if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr char const *EveryKind[] = {"null", "stack", "terminate"}; // malloc is that of the sanitizer
#    else
constexpr char const *EveryKind[] = {"null", "malloc", "stack", "terminate"};
#    endif
constexpr int FewCrashes = 20;
#endif

void ExpectInOrder(std::string const &report, std::vector<std::string> const &texts)
{
    std::size_t at = 0;
    for (std::string const &text : texts)
    {
        std::size_t const found = report.find(text, at);
        ASSERT_NE(found, report.npos) << text << " is not, or not there, in\n" << report;
        at = found + text.size();
    }
}

/// What is wrong with the dump; empty when nothing is.
std::string FaultOfDump(CrashRun const &run)
{
    std::string const file = run.OnlyFile(".dmp");
#if defined(_WIN32)
    // What Wine writes of the threads is not always right.
    return file.starts_with("MDMP") ? "" : "no dump";
#else
    MinidumpReport const dump = ReadMinidump(file);
    bool const isOfThread = run.text.find("thread: " + std::to_string(dump.exceptionThread)) != run.text.npos;
    return dump.processId == run.processId && isOfThread ? dump.fault : "of another thread " + dump.fault;
#endif
}

} // namespace

TEST(CrashHandler, ReportsWhatHappenedAndWhere)
{
    std::pair<char const *, std::vector<std::string>> const rows[] = {
        {"null",
         {AccessViolation, "0x00000000 ", "CrashProgram.cpp(", "CrashOnNull\n", "main\n", "registers:\n"}},
        {"abort", {Abort, "Abort\n", "main\n"}},
        {"terminate", {Abort, "exception: std::runtime_error\n", "stack:\n", "ThrowUncaught\n"}},
        {"together", {AccessViolation, "CrashOnNull\n"}},
#if !defined(_WIN32) // Wine keeps no reserve on an exhausted stack, so that no filter runs.
        {"stack", {"ExhaustStack\n", " frames left out)\n", "ExhaustStack\n", "main\n"}},
        {"thread-stack", {"ExhaustStack\n", " frames left out)\n", "ExhaustStackOfThread"}},
        {"call", {AccessViolation, "stack:\n0x00000000 0x0 (module name", "CrashByCall\n", "main\n"}},
        {"division", {"SIGFPE (8), an integer divided by zero\n", "CrashByDivision\n"}},
#endif
    };
    for (auto const &[kind, texts] : rows)
    {
        SCOPED_TRACE(kind);
        CrashRun const run(kind);
        ExpectInOrder(run.text, texts);
        ExpectInOrder(run.text, {"crash report 1\n", "process: " + std::to_string(run.processId),
                                 "\ntime: 20", "\nmodules:\n", "crash_program"});
        EXPECT_TRUE(run.IsTextComplete()) << run.text << run.output;
        EXPECT_EQ(run.text.find("(not finished)"), run.text.npos);
        EXPECT_EQ(FaultOfDump(run), "");
    }
}

// tools/soak repeats it often.
TEST(CrashHandler, ReportsEachCrashOfMany)
{
    struct Count
    {
        int crashes = 0;
        int complete = 0;
        double slowest = 0;
    };
    static std::map<std::string, Count> counts; // of all repetitions
    for (int i = 0; i < FewCrashes; ++i)
    {
        char const *const kind = EveryKind[static_cast<std::size_t>(i) % std::size(EveryKind)];
        CrashRun const run(kind);
        Count &count = counts[kind];
        ++count.crashes;
        count.slowest = std::max(count.slowest, run.duration.count());
        bool const isInPlace =
            kind != std::string_view("malloc") || run.text.find("CrashInMalloc\n") != run.text.npos;
        if (run.IsTextComplete() && isInPlace && FaultOfDump(run).empty())
            ++count.complete;
        else
            ADD_FAILURE() << kind << ":\n" << run.text << run.output;
    }
    for (auto const &[kind, count] : counts)
    {
        std::printf("%-9s crashes: %4d, complete: %4d, slowest: %.2f s\n", kind.c_str(), count.crashes,
                    count.complete, count.slowest);
#if !defined(_WIN32)
        EXPECT_LT(count.slowest, 2) << kind; // the start of Wine takes longer
#endif
    }
}

TEST(CrashHandler, LeavesNothingOfAProgramThatDoesNotCrashOrHasUninstalledIt)
{
    EXPECT_TRUE(CrashRun("nothing").result.Exited(2));
    CrashRun const run("null", {"uninstalled"});
    EXPECT_FALSE(run.result.Exited(2));
    EXPECT_TRUE(run.Files(".txt").empty() && run.Files(".dmp").empty());
}
