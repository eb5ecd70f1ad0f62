#include "explorer/Specification.h"

#include <algorithm>

namespace explorer
{

namespace
{

Situation After(Situation now, std::size_t thread, Phase phase, int first, int second = 0, int third = 0)
{
    now.threads[thread] = phase;
    now.object = {static_cast<std::int8_t>(first), static_cast<std::int8_t>(second),
                  static_cast<std::int8_t>(third)};
    return now;
}

template <bool MayDenyForNoReason>
void Lock(Situation const &now, std::size_t thread, std::string_view call, bool, Situations &next)
{
    auto const [writer, locks, readers] = now.object;
    int const self = static_cast<int>(thread) + 1;
    bool const isOwner = writer == self;
    bool const reads = call.ends_with("Read");
    bool const isFree = isOwner || (writer == 0 && (reads || readers == 0));
    if (call == "Unlock")
        next.push_back(After(now, thread, Phase::Granted, locks == 1 ? 0 : self, locks - 1, readers));
    else if (call == "UnlockRead")
        next.push_back(After(now, thread, Phase::Granted, writer, locks, readers - 1));
    else if (isFree && reads)
        next.push_back(After(now, thread, Phase::Granted, writer, locks, readers + 1));
    else if (isFree)
        next.push_back(After(now, thread, Phase::Granted, self, locks + 1, readers));
    if (call.starts_with("Try") && (!isFree || MayDenyForNoReason))
        next.push_back(After(now, thread, Phase::Denied, writer, locks, readers));
}

void Semaphore(Situation const &now, std::size_t thread, std::string_view call, bool mayGiveUp,
               Situations &next)
{
    int const units = now.object[0];
    if (call == "Release")
        next.push_back(After(now, thread, Phase::Granted, units + 1));
    else if (units != 0)
        next.push_back(After(now, thread, Phase::Granted, units - 1));
    else if (call == "TryAcquire" || (call == "AcquireFor" && mayGiveUp))
        next.push_back(After(now, thread, Phase::Denied, units));
}

template <bool IsManual>
void Event(Situation const &now, std::size_t thread, std::string_view call, bool mayGiveUp, Situations &next)
{
    int const isSet = now.object[0];
    if (now.threads[thread] == Phase::Waiting)
    {
        if (call == "WaitFor" && mayGiveUp)
            next.push_back(After(now, thread, Phase::Denied, isSet));
    }
    else if (call == "Set")
    {
        Situation set = After(now, thread, Phase::Granted, 1);
        bool hasReleased = false;
        for (std::size_t other = 0; other < MaxThreads; ++other)
        {
            if (now.threads[other] != Phase::Waiting)
                continue;
            hasReleased = true;
            set.threads[other] = Phase::Granted;
            if (IsManual)
                continue;
            next.push_back(After(now, thread, Phase::Granted, 0)); // any of them may be the one
            next.back().threads[other] = Phase::Granted;
        }
        if (IsManual || !hasReleased)
            next.push_back(set);
    }
    else if (call == "Reset")
        next.push_back(After(now, thread, Phase::Granted, 0));
    else if (isSet)
        next.push_back(After(now, thread, Phase::Granted, IsManual));
    else
        next.push_back(After(now, thread, call == "Look" ? Phase::Denied : Phase::Waiting, 0));
}

} // namespace

Rules const MutexRules = Lock<false>;
Rules const ReadWriteLockRules = Lock<true>;
Rules const SemaphoreRules = Semaphore;
Rules const ManualResetRules = Event<true>;
Rules const AutoResetRules = Event<false>;

void Witness::Begin(std::size_t thread, std::string_view call)
{
    m_calls[thread] = call;
    for (Situation &now : m_situations)
        now.threads[thread] = Phase::Called;
    AddWhatFollows();
}

void Witness::End(std::size_t thread, bool result)
{
    Phase const phase = result ? Phase::Granted : Phase::Denied;
    std::erase_if(m_situations, [=](Situation const &now) { return now.threads[thread] != phase; });
    for (Situation &now : m_situations)
        now.threads[thread] = Phase::Idle;
}

void Witness::Rest(std::array<Rested, MaxThreads> const &threads)
{
    auto const couldGoOn = [&](Situation const &now)
    {
        Situations next;
        for (std::size_t thread = 0; thread < MaxThreads; ++thread)
        {
            if (threads[thread] == Rested::Awake)
                continue;
            if (now.threads[thread] > Phase::Waiting)
                return true;
            m_rules(now, thread, m_calls[thread], threads[thread] == Rested::Asleep, next);
        }
        return !next.empty();
    };
    std::erase_if(m_situations, couldGoOn);
    AddWhatFollows(); // a time limit may pass from now on
}

void Witness::AddWhatFollows()
{
    for (Situations open = m_situations; !open.empty();)
    {
        Situation const now = open.back();
        open.pop_back();
        Situations next;
        for (std::size_t thread = 0; thread < MaxThreads; ++thread)
        {
            if (now.threads[thread] == Phase::Called || now.threads[thread] == Phase::Waiting)
                m_rules(now, thread, m_calls[thread], true, next);
        }
        for (Situation const &situation : next)
        {
            auto const place = std::lower_bound(m_situations.begin(), m_situations.end(), situation);
            if (place != m_situations.end() && *place == situation)
                continue;
            m_situations.insert(place, situation);
            open.push_back(situation);
        }
    }
}

} // namespace explorer
