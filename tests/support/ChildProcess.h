/// @file
/// A program of its own that a test starts, watches and ends.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Runs a program, collects what it writes to standard output and standard error, both into one text, and
/// kills it in the destructor. For one thread. A program that cannot be started fails the test; one that
/// crashes leaves no core file.
///
///     ChildProcess child(VANSYS_HELPER_WALKED_PROGRAM, {"sleep"});
///     ASSERT_TRUE(child.WaitForOutput("ready"));
///     ... look at the process child.Id() ...
///     child.CloseInput(); // ends a program that has waited for its input
///     EXPECT_TRUE(child.Wait().Exited(0)) << child.Output();
class ChildProcess
{
public:
    struct Setup
    {
        std::vector<std::string> environment; ///< `NAME=value` each, in addition to the test's own
        /// Linux only: is called in the new process before the program begins, between fork and exec. May
        /// only do what is safe in a signal handler: set a limit, change the folder, block a signal.
        std::function<void()> prepare;
    };

    struct Result
    {
        bool hasEnded = false; ///< by itself, before the deadline; a program killed by `Wait` has not
        int status = -1;       ///< exit status; -1 when ended by a signal. On Windows the exit code
        int signal = 0;        ///< Linux only: the signal that ended it; else 0

        bool Exited(int expected) const { return hasEnded && signal == 0 && status == expected; }
        bool WasEndedBy(int expected) const { return hasEnded && signal == expected; }
    };

    static constexpr std::chrono::seconds LongWait{60};

    explicit ChildProcess(std::string const &program, std::vector<std::string> const &arguments = {});
    ChildProcess(std::string const &program, std::vector<std::string> const &arguments, Setup const &setup);
    ~ChildProcess();
    ChildProcess(ChildProcess const &) = delete;
    ChildProcess &operator=(ChildProcess const &) = delete;

    /// The id of the process; 0 when it was not started.
    unsigned Id() const;

    /// Waits until the output contains the text. False when the program has ended, or the time has, before.
    bool WaitForOutput(std::string_view text, std::chrono::milliseconds limit = LongWait);

    /// Closes the standard input of the program, which is empty.
    void CloseInput();

    /// Waits until the program has ended, and kills it when that takes longer. May be called again.
    Result Wait(std::chrono::milliseconds limit = LongWait);

    void Kill();

    /// What has been read from the program by the functions above.
    std::string const &Output() const { return m_output; }

private:
    struct Process;

    void Start(std::string const &program, std::vector<std::string> const &arguments, Setup const &setup);

    /// Reads what there is, and waits for more until the deadline. Returns whether the process still runs.
    bool Read(std::chrono::steady_clock::time_point deadline);

    std::unique_ptr<Process> m_process;
    std::string m_output;
    Result m_result;
};
