/// @file
/// What the objects promise, in rules so plain that they can be believed, and whether what was seen keeps to
/// them.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace explorer
{

inline constexpr std::size_t MaxThreads = 3;

/// How far a thread is with its call.
enum class Phase : std::uint8_t
{
    Idle,
    Called,
    Waiting, ///< the object counts on the thread
    Denied,  ///< is to return false
    Granted, ///< is to return true
};

struct Situation
{
    std::array<std::int8_t, 3> object{}; // the rules say what the numbers are
    std::array<Phase, MaxThreads> threads{};

    auto operator<=>(Situation const &) const = default;
};

using Situations = std::vector<Situation>;

/// Adds the situations to which the next step of the thread's call may lead: none if it has to wait for
/// others. `mayGiveUp`: a time limit may pass.
using Rules = void (*)(Situation const &now, std::size_t thread, std::string_view call, bool mayGiveUp,
                       Situations &next);

extern Rules const MutexRules;         ///< owner + 1, times that it holds the mutex
extern Rules const ReadWriteLockRules; ///< writer + 1, times that it holds the lock, readers
extern Rules const SemaphoreRules;     ///< units
extern Rules const ManualResetRules;   ///< 1 while the event is set
extern Rules const AutoResetRules;     ///< 1 while the event is set

/// What a thread does while none is at work.
enum class Rested : std::uint8_t
{
    Awake,
    Asleep,      ///< for ever, if it depends on the clock
    AsleepAWhile ///< until its time limit
};

/// All situations in which an object may be after what was seen of it. A call takes its steps at any moments
/// between its beginning and its end. Where no situation is left, no such moments explain what was seen.
class Witness
{
public:
    explicit Witness(Rules rules) : m_rules(rules), m_situations(1) {}

    void Begin(std::size_t thread, std::string_view call);
    void End(std::size_t thread, bool result);

    /// No thread is at work: so each that is asleep has to wait, and not for longer than its time limit.
    void Rest(std::array<Rested, MaxThreads> const &threads);

    Situations const &Possible() const { return m_situations; } // sorted

private:
    void AddWhatFollows();

    Rules m_rules;
    std::array<std::string_view, MaxThreads> m_calls{};
    Situations m_situations;
};

} // namespace explorer
