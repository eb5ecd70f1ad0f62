/// @file
/// What the objects promise, in rules so plain as to be believed, and whether what was seen keeps to them.
#pragma once

#include <algorithm>
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
    std::array<int, 3> object{}; // the rules say what the numbers are
    std::array<Phase, MaxThreads> threads{};

    auto operator<=>(Situation const &) const = default;
};

using Situations = std::vector<Situation>;

/// The situations to which the next step of the thread's call may lead: none if it has to wait for others.
/// `mayGiveUp`: a time limit may pass.
using Rules = Situations (*)(Situation const &now, std::size_t thread, std::string_view call, bool mayGiveUp);

extern Rules const MutexRules;         ///< owner + 1, times that it holds the mutex
extern Rules const ReadWriteLockRules; ///< writer + 1, times that it holds the lock, readers
extern Rules const SemaphoreRules;     ///< units
extern Rules const ManualResetRules;   ///< 1 while the event is set
extern Rules const AutoResetRules;     ///< 1 while the event is set

/// All situations in which an object may be after what was seen of it. A call takes its steps at any moments
/// between its beginning and its end. Where no situation is left, no such moments explain what was seen.
class Witness
{
public:
    explicit Witness(Rules rules) : m_rules(rules), m_situations(1) {}

    void Begin(std::size_t thread, std::string_view call)
    {
        m_calls[thread] = call;
        for (Situation &now : m_situations)
            now.threads[thread] = Phase::Called;
        AddWhatFollows();
    }

    void End(std::size_t thread, bool result)
    {
        Phase const phase = result ? Phase::Granted : Phase::Denied;
        std::erase_if(m_situations, [=](Situation const &now) { return now.threads[thread] != phase; });
        for (Situation &now : m_situations)
            now.threads[thread] = Phase::Idle;
    }

    /// No thread is at work and this one is asleep: so it has to wait, if only until its time limit.
    void Rest(std::size_t thread, bool hasTimeLimit)
    {
        auto const couldGoOn = [=, this](Situation const &now)
        {
            return now.threads[thread] > Phase::Waiting ||
                   !m_rules(now, thread, m_calls[thread], !hasTimeLimit).empty();
        };
        std::erase_if(m_situations, couldGoOn);
        AddWhatFollows(); // the time limit may pass from now on
    }

    Situations const &Possible() const { return m_situations; } // sorted

private:
    void AddWhatFollows()
    {
        for (std::size_t i = 0; i < m_situations.size(); ++i)
        {
            Situation const now = m_situations[i];
            for (std::size_t thread = 0; thread < MaxThreads; ++thread)
            {
                if (now.threads[thread] == Phase::Called || now.threads[thread] == Phase::Waiting)
                    Add(m_rules(now, thread, m_calls[thread], true));
            }
        }
        std::ranges::sort(m_situations);
    }

    void Add(Situations const &situations)
    {
        for (Situation const &situation : situations)
        {
            if (std::ranges::count(m_situations, situation) == 0)
                m_situations.push_back(situation);
        }
    }

    Rules m_rules;
    std::array<std::string_view, MaxThreads> m_calls{};
    Situations m_situations;
};

} // namespace explorer
