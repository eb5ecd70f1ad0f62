#include "main/vansys/failure/ExceptionStacks.h"

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace vansys::detail
{

namespace
{

/// A call stack, which an exception and its copies share.
class SharedStack
{
public:
    explicit SharedStack(TCapturedStack const &stack) noexcept : m_stack(stack) {}

    TCapturedStack const &Get() const noexcept { return m_stack; }

    void AddUser() noexcept { m_users.fetch_add(1, std::memory_order_relaxed); }

    void DropUser() noexcept
    {
        if (m_users.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

private:
    TCapturedStack m_stack;
    std::atomic<std::size_t> m_users{1};
};

struct DropUser
{
    void operator()(SharedStack *stack) const noexcept { stack->DropUser(); }
};

using StackPointer = std::unique_ptr<SharedStack, DropUser>;

/// What the table knows of one exception.
struct Entry
{
    VantrelException const *exception;
    StackPointer stack;
    Entry *next = nullptr;
};

using EntryPointer = std::unique_ptr<Entry>;

/// Of the entries whose addresses have a hash in common. Never destroyed, as exceptions may outlive all
/// statics: so it owns its entries by plain pointers.
struct Chain
{
    Entry *first = nullptr;

    void Insert(EntryPointer entry) noexcept
    {
        entry->next = first;
        first = entry.release();
    }

    Entry *Find(VantrelException const &exception) const noexcept
    {
        Entry *entry = first;
        while (entry && entry->exception != &exception)
            entry = entry->next;
        return entry;
    }

    EntryPointer Take(VantrelException const &exception) noexcept
    {
        Entry **link = &first;
        while (*link && (*link)->exception != &exception)
            link = &(*link)->next;
        EntryPointer entry(*link);
        if (entry)
            *link = entry->next;
        return entry;
    }
};

constexpr std::size_t ShardBits = 6;
constexpr std::size_t ChainBits = 5;

/// One of the parts of the table. Exceptions of several threads seldom meet in one.
struct Shard
{
    std::mutex mutex;
    std::array<Chain, std::size_t{1} << ChainBits> chains;
};

using Table = std::array<Shard, std::size_t{1} << ShardBits>;

/// Never destroyed.
Table &TheTable() noexcept
{
    alignas(Table) static std::array<std::byte, sizeof(Table)> s_memory;
    static Table *const s_table = new (s_memory.data()) Table;
    return *s_table;
}

struct Place
{
    explicit Place(VantrelException const &exception) noexcept
    {
        // Multiplied, so that the upper bits depend on all others.
        std::uint64_t const hash = reinterpret_cast<std::uintptr_t>(&exception) * 0x9E3779B97F4A7C15U;
        auto const index = static_cast<std::size_t>(hash >> (64 - ShardBits - ChainBits));
        shard = &TheTable()[index >> ChainBits];
        chain = &shard->chains[index % shard->chains.size()];
    }

    Shard *shard;
    Chain *chain;
};

/// The stack of the exception, with the caller as one more user; null when it has none.
StackPointer Share(VantrelException const &exception) noexcept
{
    Place const place(exception);
    std::lock_guard const lock(place.shard->mutex);
    Entry const *const entry = place.chain->Find(exception);
    if (!entry)
        return nullptr;
    entry->stack->AddUser();
    return StackPointer(entry->stack.get());
}

EntryPointer Take(VantrelException const &exception) noexcept
{
    Place const place(exception);
    std::lock_guard const lock(place.shard->mutex);
    return place.chain->Take(exception);
}

/// The exception has no stack yet. Returns whether it has one now.
bool Insert(VantrelException const &exception, StackPointer stack) noexcept
{
    EntryPointer entry(stack ? new (std::nothrow) Entry{&exception, nullptr} : nullptr);
    if (!entry)
        return false;
    entry->stack = std::move(stack);
    Place const place(exception);
    std::lock_guard const lock(place.shard->mutex);
    place.chain->Insert(std::move(entry));
    return true;
}

} // namespace

void ExceptionStacks::Capture(VantrelException const &exception, void const *returnAddress) noexcept
{
    StackPointer stack(new (std::nothrow) SharedStack(TCapturedStack::CaptureFrom(returnAddress)));
    if (Insert(exception, std::move(stack)))
        s_count.fetch_add(1, std::memory_order_relaxed);
}

void ExceptionStacks::Copy(VantrelException const &from, VantrelException const &to) noexcept
{
    if (&from == &to)
        return;
    Remove(to);
    if (Insert(to, Share(from)))
        s_count.fetch_add(1, std::memory_order_relaxed);
}

void ExceptionStacks::Remove(VantrelException const &exception) noexcept
{
    if (Take(exception)) // and what it had is dropped without the lock
        s_count.fetch_sub(1, std::memory_order_relaxed);
}

TCapturedStack ExceptionStacks::Find(VantrelException const &exception) noexcept
{
    StackPointer const stack = Share(exception);
    return stack ? stack->Get() : TCapturedStack();
}

} // namespace vansys::detail
