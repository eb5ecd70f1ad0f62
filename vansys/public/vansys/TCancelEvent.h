/// @file
/// TCancelEvent: tells work, and everything that was started under it, to stop.
#pragma once

#include "vansys/Export.h"
#include "vansys/IEvent.h"
#include "vansys/ReferenceCount.h"

/// A manual-reset event that is shared through a reference count and may have children: signalling it signals
/// its children, and so everything below it.
///
/// @code
/// RefCntPtr<TCancelEvent, RefCntObject> const all(new TCancelEvent);
/// RefCntPtr<TCancelEvent, RefCntObject> const one(new TCancelEvent);
/// all->Add(one);
/// one->Signal(); // cancels one piece of work
/// all->Signal(); // cancels the rest too
/// @endcode
///
/// **Tree.** A link goes from parent to child only. A parent keeps its children alive, a child does not know
/// its parents. A child may have several parents. Links must not form a cycle: `Signal` would call itself
/// without end. It does so once for each level, and so does the destruction of a tree: a tree may be wide,
/// but not some ten thousand levels deep.
///
/// **No signal is lost.** A child that is added while the parent is being signalled is signalled as one that
/// was added before or after. A child that is added to a parent that is set is signalled at once; when the
/// parent is signalled again, so is the child. A child may also be signalled twice by one signal of its
/// parent: at once, and as one of the children, when it is added between the moment at which the parent is
/// set and the one at which its children are signalled. One that a callback of the parent adds always is.
/// That is harmless: callbacks run once more.
///
/// **Locks.** Each event has two, both recursive: the callback lock (see `IEvent`) and the lock of its
/// children, which `Add` and `Remove` take, and which `Signal` holds while it signals the children, after the
/// callbacks have run. `Signal` never holds both. So a callback runs with the callback lock of its own event
/// held and, when the signal came from above, with the children's locks of the events above. It may add and
/// remove callbacks and children of its own event and of those below it.
///
/// It must not do so with an event above or beside its own, nor signal it, even where it gets away with that
/// on one thread: when both events are signalled at once, on two threads, each callback waits for the lock
/// that the other thread holds. Nor must it wait for a thread that does so. For example, a parent's callback
/// that calls `Add` meets in this way a child's callback that removes callbacks of the parent. Let the
/// callback of the child leave such work to another thread, or to a time after the signal.
///
/// **Lifetime.** Held by `RefCntPtr`, whose last one destroys the event; nothing is signalled by that,
/// neither the event nor its children. A child whose last reference is given up during a signal of its parent
/// may be destroyed with the children's lock held.
///
/// An event that no `RefCntPtr` ever holds may also be a local variable or member, for instance the root of a
/// tree. It must not become a child, nor be handed to anything that makes a `RefCntPtr` of it: the last one
/// would delete it. `Add` and `Remove` refuse plain pointers for that reason.
///
/// In all else the contract is that of `IEvent`.
class VANSYS_API TCancelEvent : public RefCntObject, public IEvent
{
public:
    /// Not set, without children; its reference count is 0. Throws `std::bad_alloc`.
    TCancelEvent();

    TCancelEvent(TCancelEvent const &) = delete;
    TCancelEvent &operator=(TCancelEvent const &) = delete;

    /// Gives back the references to the children.
    ~TCancelEvent() override;

    /// Sets the event, runs its callbacks, then signals the children in ascending order of their addresses,
    /// each one with everything below it before the next. When a callback or a child throws, those that
    /// follow are not signalled; the event stays set.
    void Signal() const override;
    bool IsSet() const override;
    bool Wait(std::chrono::milliseconds timeout) const override;
    bool Wait() const override;

    /// Resets this event only, and none of its children.
    void Reset() const override;
    void AddOnSignalCallback(void *key, std::function<void()> callback) const override;
    void RemoveOnSignalCallback(void *key) const override;

    /// Makes `child` a child of this event, and signals it when this event is set. If that throws, `child`
    /// has not become a child, but it stays set.
    ///
    /// A child that is there already is a failed assertion "Attempted to insert duplicate event."; when the
    /// host's hook lets it pass, the child is signalled all the same if this event is set.
    ///
    /// Null counts as a child, but each attempt to signal it is the failed assertion "m_ptr" of `RefCntPtr`;
    /// when the host's hook lets it pass, the next child follows.
    void Add(RefCntPtr<TCancelEvent, RefCntObject> child) const;

    /// Takes `child` out of the children. It stays set if it is. When this has returned on a thread, a signal
    /// of this event that was under way on another thread has passed the child.
    ///
    /// One that is not a child is a failed assertion "it != m_childEvents.end()", after which nothing else is
    /// done.
    void Remove(RefCntPtr<TCancelEvent, RefCntObject> child) const;

    // A RefCntPtr that is made just for the call would delete a local event.
    template <class Event>
    void Add(Event *child) const = delete;
    template <class Event>
    void Remove(Event *child) const = delete;

private:
    class Implementation;

    Implementation *m_implementation; // owned, never null
};
