/// @file
/// TEvent: an event that stays set until it is reset.
#pragma once

#include "vansys/IEvent.h"

namespace vansys::detail
{
class EventCore;
}

/// A manual-reset event. While it is set, every `Wait` returns true at once; `IsSet` and `Wait` leave it set.
///
/// For something that happens once: a task is done, a thread is to stop. The contract is that of `IEvent`.
/// `Signal`, `IsSet` and `Reset` of an event that no thread waits for make no system call on Linux.
class VANSYS_API TEvent : public IEvent
{
public:
    /// Set from the start when `initiallySet` is true. Throws `std::bad_alloc`.
    explicit TEvent(bool initiallySet = false);

    TEvent(TEvent const &) = delete;
    TEvent &operator=(TEvent const &) = delete;

    ~TEvent() override;

    void Signal() const override;
    bool IsSet() const override;
    bool Wait(std::chrono::milliseconds timeout) const override;
    bool Wait() const override;
    void Reset() const override;
    void AddOnSignalCallback(void *key, std::function<void()> callback) const override;
    void RemoveOnSignalCallback(void *key) const override;

private:
    vansys::detail::EventCore *m_core; // owned, never null
};
