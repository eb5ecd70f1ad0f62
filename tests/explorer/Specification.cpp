#include "explorer/Specification.h"

namespace explorer
{

namespace
{

Situation After(Situation now, std::size_t thread, Phase phase, int first, int second = 0, int third = 0)
{
    now.threads[thread] = phase;
    now.object = {first, second, third};
    return now;
}

template <bool MayDenyForNoReason>
Situations Lock(Situation const &now, std::size_t thread, std::string_view call, bool)
{
    auto const [writer, locks, readers] = now.object;
    int const self = static_cast<int>(thread) + 1;
    bool const reads = call.ends_with("Read");
    if (call == "Unlock")
        return {After(now, thread, Phase::Granted, locks == 1 ? 0 : self, locks - 1, readers)};
    if (call == "UnlockRead")
        return {After(now, thread, Phase::Granted, writer, locks, readers - 1)};
    Situations next;
    bool const isFree = writer == self || (writer == 0 && (reads || readers == 0));
    if (isFree && reads)
        next.push_back(After(now, thread, Phase::Granted, writer, locks, readers + 1));
    else if (isFree)
        next.push_back(After(now, thread, Phase::Granted, self, locks + 1, readers));
    if (call.starts_with("Try") && (!isFree || MayDenyForNoReason))
        next.push_back(After(now, thread, Phase::Denied, writer, locks, readers));
    return next;
}

Situations Semaphore(Situation const &now, std::size_t thread, std::string_view call, bool mayGiveUp)
{
    int const units = now.object[0];
    if (call == "Release")
        return {After(now, thread, Phase::Granted, units + 1)};
    if (units != 0)
        return {After(now, thread, Phase::Granted, units - 1)};
    if (call == "TryAcquire" || (call == "AcquireFor" && mayGiveUp))
        return {After(now, thread, Phase::Denied, units)};
    return {};
}

template <bool IsManual>
Situations Event(Situation const &now, std::size_t thread, std::string_view call, bool mayGiveUp)
{
    int const isSet = now.object[0];
    if (now.threads[thread] == Phase::Waiting)
        return Situations(call == "WaitFor" && mayGiveUp ? 1 : 0, After(now, thread, Phase::Denied, isSet));
    if (call == "Reset")
        return {After(now, thread, Phase::Granted, 0)};
    if (call != "Set" && isSet)
        return {After(now, thread, Phase::Granted, IsManual)};
    if (call != "Set")
        return {After(now, thread, call == "Look" ? Phase::Denied : Phase::Waiting, 0)};
    Situations next;
    Situation set = After(now, thread, Phase::Granted, 1);
    for (std::size_t other = 0; other < MaxThreads; ++other)
    {
        if (now.threads[other] != Phase::Waiting)
            continue;
        // All of them are released, or any one of them.
        Situation &released = IsManual ? set : next.emplace_back(After(now, thread, Phase::Granted, 0));
        released.threads[other] = Phase::Granted;
    }
    if (next.empty())
        next.push_back(set);
    return next;
}

} // namespace

Rules const MutexRules = Lock<false>;
Rules const ReadWriteLockRules = Lock<true>;
Rules const SemaphoreRules = Semaphore;
Rules const ManualResetRules = Event<true>;
Rules const AutoResetRules = Event<false>;

} // namespace explorer
