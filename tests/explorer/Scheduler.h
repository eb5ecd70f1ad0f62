/// @file
/// Runs a small program of threads in every order in which their steps may happen.
///
/// A step is one access to an atomic or one call of the futex. Memory is sequentially consistent: what is
/// found is a fault of the protocol, never of a memory order. Time limits that pass at any moment, a wake-up
/// for no reason and the choice of whom to wake are tried out too. What is looked for:
/// - a result, or a thread left asleep, that the rules of the object do not explain (Specification.h);
/// - a thread that sleeps for what is there to be taken, while nobody is on the way to wake it;
/// - a thread that goes round and round while the others stand still.
///
/// The sources are those of the library. They are compiled with the headers below `explorer/main/platform/`,
/// which come first in the include path and make each access a call of the scheduler. The threads have stacks
/// of their own on one thread of the system. An execution is repeated from its start with one choice changed,
/// until no choice is left; it ends early in a state that has been there before. A state is the stacks, the
/// memory that the object was made in, and what is known of it by its rules.
///
/// To have another class explored:
/// 1. It waits by what `platform/Atomic.h`, `Futex.h`, `Clock.h` and `SpinWait.h` name. It has no variables
///    of a thread, and allocates in its constructor only.
/// 2. Its source goes into CMakeLists.txt, and its rules into Specification.cpp.
/// 3. Programs.cpp gets an adapter from the names of calls to its functions, and programs for two or three
///    threads with one or two calls each. A program may have a million states.
/// 4. Faults are planted in it by themselves: see `Fault`. Where one is not found, a program is missing, or
///    it does no harm: `harmlessPlants` counts those.
#pragma once

#include "explorer/Specification.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace explorer
{

using Time = std::chrono::steady_clock::time_point;

inline constexpr Time Never = Time::max();

enum class Sleepers
{
    One,
    All,
};

/// A place in a source.
struct Site
{
    char const *file;
    int line;

    static constexpr Site Here(char const *file = __builtin_FILE(), int line = __builtin_LINE())
    {
        return {file, line};
    }

    bool operator==(Site const &) const = default;
};

/// What goes wrong at one place, to see that it is found.
enum class Fault
{
    None,
    LostWake,   ///< nobody is woken
    BlindSleep, ///< a thread falls asleep whatever the word is
    BlindWrite, ///< a compare-and-exchange does not compare
    TornUpdate, ///< others come between the two halves of a read-modify-write
};

struct Plant
{
    Fault fault = Fault::None;
    Site site{};

    bool operator==(Plant const &) const = default;
};

/// Calls an object. Returns what the call returns, or true.
using Object = std::function<bool(std::string_view call, std::uint32_t milliseconds)>;

struct Subject
{
    char const *name;
    Object (*make)();
    Rules rules;
    char const *probe; ///< a call that succeeds when there is something to be taken
    /// Calls, and `|` between threads. A call that returns false makes its thread skip the next one.
    std::vector<char const *> programs;
    std::size_t harmlessPlants; ///< faults that these programs cannot show
};

struct Findings
{
    std::string failure; ///< empty, or what has failed and the steps that led to it
    std::size_t executions = 0;
    std::size_t states = 0;
    std::vector<Plant> plants; ///< wherever something can go wrong
};

class Scheduler
{
public:
    Scheduler(Subject const &subject, char const *program, Plant const &plant = {});
    ~Scheduler();

    Findings Explore();

    // For the headers in place of the platform's.
    static Scheduler *s_current;

    void Step(char const *operation, Site site); ///< lets other threads go first, or not
    void Saw(std::uint64_t value);               ///< what the step has found
    bool Sleep(std::uint32_t const *word, std::uint32_t expected, Time deadline, Site site);
    void Wake(std::uint32_t const *word, Sleepers sleepers, Site site);
    bool IsPlanted(Fault fault, Site site);
    Time Now() const { return m_now; }
    void const *CurrentThread() const;

private:
    struct Thread;
    struct TraceLine;
    struct Option;
    struct Choice;

    static void RunThread();
    void Yield();
    void Execute();
    void Prepare(Thread &thread);
    void Clear(Thread &thread);
    bool MoveToNextExecution();
    bool ChooseWhatIsNext();
    void CollectOptions();
    void Go();
    void Rest();
    bool MayProbe() const;
    void Probe();
    std::uint64_t State() const;
    bool IsKnown(std::uint64_t state);
    std::size_t Choose(std::size_t count);
    void Note(std::size_t thread, char const *what);
    void Fail(char const *what);

    Subject const &m_subject;
    Plant const m_plant;
    std::vector<Thread> m_threads; // the last one probes
    std::size_t m_prober;
    std::uint64_t *m_top = nullptr; // of the scheduler's own stack
    std::vector<Choice> m_path;     // of the execution
    std::unordered_set<std::uint64_t> m_known;
    Findings m_findings;

    // Anew in each execution.
    Object m_object;
    Witness m_witness;
    Time m_now{};
    int m_wakesForNoReason = 0; // that may still come
    std::size_t m_current = 0;
    std::size_t m_depth = 0;                  // in the path
    std::vector<std::uint64_t> m_statesAlone; // since only the current thread takes steps
    bool m_isProbing = false;
    bool m_hasWoken = false;
    std::vector<Option> m_options;
    std::vector<TraceLine> m_trace;
};

} // namespace explorer
