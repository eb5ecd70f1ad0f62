#include "vansys/TCapturedStack.h"
#include "vansys/VantrelException.h"

#include "Rows.h"

#if defined(VANSYS_BENCH_STACKTRACE)
#    include <boost/stacktrace.hpp>
#    include <boost/version.hpp>
#endif

#include <array>
#include <cstdlib>
#include <exception>
#include <spawn.h>
#include <string>

#include <execinfo.h>
#include <sys/wait.h>

extern char **environ;

namespace bench
{

namespace
{

constexpr char Backtrace[] = "backtrace";
constexpr char Boost[] = "Boost.Stacktrace";
constexpr std::size_t FrameCount = 26;

/// Calls `run` where the stack has as many frames as are to be captured.
template <class Run>
[[gnu::noinline]] void AtDepth(Run const &run)
{
    if (TCapturedStack::Capture().FrameCount() < FrameCount)
        AtDepth(run);
    else
        run();
    asm volatile("" ::: "memory"); // so that the calls do not become a loop
}

/// Measures `work`, which is to return something of what it has found.
template <class Work>
void AddDeepCase(Row const &row, std::string const &peer, Work work)
{
    AddCase(row, peer,
            [work](benchmark::State &state)
            {
                AtDepth(
                    [&]
                    {
                        benchmark::DoNotOptimize(work()); // warm
                        for (auto _ : state)
                            benchmark::DoNotOptimize(work());
                    });
            });
}

struct Backtraced
{
    std::array<void *, TCapturedStack::MaxFrames> addresses;
    int count = backtrace(addresses.data(), static_cast<int>(addresses.size()));
};

void BenchmarkCapture(Rows &rows)
{
    rows.push_back({"call stack", "capture 26 frames", Target{1.0, {Backtrace, Boost}}});
    Row const row = rows.back();
    AddDeepCase(row, OwnName, [] { return TCapturedStack::Capture().FrameCount(); });
    AddDeepCase(row, Backtrace, [] { return Backtraced().count; });
#if defined(VANSYS_BENCH_STACKTRACE)
    AddDeepCase(row, Boost, [] { return boost::stacktrace::stacktrace().size(); });
#endif
}

/// Each captures once and describes the same frames again and again.
void BenchmarkText(Rows &rows)
{
    rows.push_back({"call stack", "text of 26 frames", Target{1.0, {Backtrace}}});
    rows.push_back({"call stack", "the same, with files and lines", Target{2.0, {Boost}}});
    Row const withLines = rows.back();
    Row const row = rows[rows.size() - 2];
    for (Row const &each : {row, withLines})
        AddDeepCase(each, OwnName,
                    []
                    {
                        static TCapturedStack const stack = TCapturedStack::Capture();
                        return stack.Text().size();
                    });
    AddDeepCase(row, Backtrace,
                []
                {
                    static Backtraced const stack{};
                    char **const lines = backtrace_symbols(stack.addresses.data(), stack.count);
                    char const first = lines[0][0];
                    std::free(lines); // NOLINT(bugprone-multi-level-implicit-pointer-conversion)
                    return first;
                });
#if defined(VANSYS_BENCH_STACKTRACE)
    AddDeepCase(withLines, Boost,
                []
                {
                    static boost::stacktrace::stacktrace const stack;
                    return boost::stacktrace::to_string(stack).size();
                });
#endif
}

/// A whole process that describes its stack once.
void AddProcessCase(Row const &row, std::string const &peer, char const *program)
{
    AddWallTimeCase(row, peer,
                    [program](benchmark::State &state)
                    {
                        for (auto _ : state)
                        {
                            std::string name = program;
                            char *const arguments[] = {name.data(), nullptr};
                            pid_t process = 0;
                            int status = 0;
                            if (posix_spawn(&process, program, nullptr, nullptr, arguments, environ) != 0 ||
                                waitpid(process, &status, 0) != process || status != 0)
                            {
                                state.SkipWithError("the program failed");
                                return;
                            }
                        }
                    });
}

void BenchmarkFirstText(Rows &rows)
{
    rows.push_back({"call stack", "first text of a process", Target{1.0, {Boost}}});
    AddProcessCase(rows.back(), OwnName, VANSYS_BENCH_FIRST_TEXT);
#if defined(VANSYS_BENCH_STACKTRACE)
    AddProcessCase(rows.back(), Boost, VANSYS_BENCH_FIRST_TEXT_STACKTRACE);
#endif
}

/// What exceptions cost where no call stacks are wanted: nothing to speak of beside one that knows of none.
void BenchmarkExceptions(Rows &rows)
{
    rows.push_back({"call stack", "make, copy and destroy an exception", std::nullopt});
    Row const row = rows.back();
    TStringCore const message = u"a message that is too long to be kept in the string itself";
    auto const copy = [message](benchmark::State &state)
    {
        for (auto _ : state)
        {
            VantrelException const original(message);
            VantrelException const other(original);
            benchmark::DoNotOptimize(&other);
        }
    };
    AddCase(row, OwnName, copy);
    AddCase(row, "with call stacks",
            [copy](benchmark::State &state)
            {
                VantrelException::CaptureCallStacks(true);
                copy(state);
                VantrelException::CaptureCallStacks(false);
            });
}

} // namespace

void AddStackRows(Rows &rows)
{
#if defined(VANSYS_BENCH_STACKTRACE)
    benchmark::AddCustomContext(Boost, BOOST_LIB_VERSION);
#else
    benchmark::AddCustomContext(Boost, "left out: Boost.Stacktrace was not found when this was built");
#endif
    BenchmarkCapture(rows);
    BenchmarkText(rows);
    BenchmarkFirstText(rows);
    BenchmarkExceptions(rows);
}

} // namespace bench
