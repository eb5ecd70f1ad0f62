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
/// The sources are those of the library. They are compiled with Platform.h, which makes each access a call of
/// the scheduler. The threads have stacks of their own on one thread of the system. An execution is repeated
/// from its start with one choice changed, until no choice is left; it ends early in a state that has been
/// there before. A state is the stacks, the memory of the object, and what is known of it by its rules.
///
/// To have another class explored:
/// 1. It waits by what Platform.h stands in for, has no variables of a thread, and allocates nothing.
/// 2. Its source goes into CMakeLists.txt, and its rules into Specification.cpp.
/// 3. Programs.cpp gets an adapter from the names of calls to its functions, and programs for two or three
///    threads with one or two calls each. A program may have a million states.
/// 4. Faults are planted in it by themselves: see `Plant`. Where one is not found, a program is missing, or
///    it does no harm: `harmlessPlants` counts those.
#pragma once

#include "explorer/Specification.h"

#include <chrono>
#include <functional>
#include <set>
#include <string>

namespace explorer
{

using Time = std::chrono::steady_clock::time_point;

inline constexpr Time Never = Time::max();

/// A place in a source.
struct Site
{
    char const *file;
    int line;

    static constexpr Site Here(char const *file = __builtin_FILE(), int line = __builtin_LINE())
    {
        return {file, line};
    }

    auto operator<=>(Site const &) const = default;
};

/// What goes wrong at one place, to see that it is found: a wake-up is lost, a thread falls asleep whatever
/// the word is, a compare-and-exchange does not compare, others come between the halves of an update.
struct Plant
{
    char const *fault;
    Site site;

    auto operator<=>(Plant const &) const = default;
};

using Memory = std::array<std::uint64_t, 16>;

/// Calls an object. Returns what the call returns, or true.
using Object = std::function<bool(std::string_view call, std::uint32_t milliseconds)>;

struct Subject
{
    char const *name;
    Object (*make)(Memory &memory); ///< makes the object there
    Rules rules;
    char const *probe; ///< a call that succeeds when there is something to be taken
    /// Calls, and `|` between threads. A call that returns false makes its thread skip the next one.
    std::vector<char const *> programs;
    std::size_t harmlessPlants = 0; ///< faults that these programs cannot show
};

struct Findings
{
    std::string failure; ///< empty, or what has failed and the steps that led to it
    std::size_t states = 0;
    std::set<Plant> plants; ///< wherever something can go wrong
};

Findings Explore(Subject const &subject, char const *program, Plant const &plant = {});

/// What Platform.h asks for.
class System
{
public:
    /// Lets other threads go first, or not. The value is what the step will find.
    virtual void Step(void const *value, std::size_t size, Site site) = 0;

    /// Returns false when the deadline has passed.
    virtual bool Sleep(std::uint32_t const *word, std::uint32_t expected, Time deadline, Site site) = 0;

    virtual void Wake(std::uint32_t const *word, std::size_t most, Site site) = 0;
    virtual bool IsPlanted(char const *fault, Site site) = 0;
    virtual Time Now() const = 0;
    virtual void const *CurrentThread() const = 0;

protected:
    ~System() = default;
};

inline System *s_system = nullptr;

} // namespace explorer
