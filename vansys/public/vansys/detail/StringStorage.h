/// @file
/// Storage of TStringCore: the inline buffer, the shared heap block and everything that counts, shares and
/// detaches. Not for direct use; it is public only because copying a string must cost no call.
#pragma once

#include "vansys/Export.h"
#include "vansys/TCodeUnit.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vansys::detail
{

/// Head of a heap block. `capacity` code units follow it without a gap; the unit at index `length` is zero.
///
/// The block lives in memory from `realloc`, so it is trivially copyable and its count is a plain integer
/// that is touched only by the atomic functions of `StringStorage`.
struct StringBlock
{
    std::int32_t count;    ///< strings that share the block
    std::int32_t capacity; ///< in code units, the terminator included
    std::int32_t length;   ///< in code units, the terminator excluded

    TCodeUnit *units() noexcept { return reinterpret_cast<TCodeUnit *>(this + 1); }
};

static_assert(sizeof(StringBlock) == 12, "the code units start right after three 32-bit words");

/// 15 code units and a signed 16-bit length word.
///
/// Length word >= 0: the units hold the text and its terminator, the word is the length (0 to 14).
/// Length word < 0: the first machine word is the address of a `StringBlock`; the other units carry nothing.
///
/// Thread safety: one object belongs to one thread at a time. Objects that share a block may be used by
/// different threads: the count is changed by sequentially consistent atomic operations, whoever brings it
/// to zero frees the block, and nobody writes into a block whose count exceeds one.
///
/// Every function that allocates throws `TStringCore::Exception` and leaves the object as it was.
class VANSYS_API StringStorage
{
public:
    /// What `capacity()` says of inline text: the terminator counts.
    static constexpr int InlineCapacity = 15;

    constexpr StringStorage() noexcept : m_words{} {}

    StringStorage(StringStorage const &other) noexcept : m_words(other.m_words)
    {
        if (isHeap())
            retain(block());
    }

    StringStorage(StringStorage &&other) noexcept : m_words(other.m_words) { other.m_words = Words{}; }

    ~StringStorage()
    {
        if (isHeap())
            release(block());
    }

    /// Shares the other's block, or copies its inline units: into this object's own block when it has one
    /// to itself, so that a string that is assigned to over and over keeps its memory.
    StringStorage &operator=(StringStorage const &other) noexcept
    {
        if (other.isHeap())
        {
            // Retained first: the other may share this very block, or be this very object.
            retain(other.block());
            if (isHeap())
                release(block());
            m_words = other.m_words;
        }
        else if (!isHeap())
            m_words = other.m_words;
        else
            copyInlineIntoBlock(other);
        return *this;
    }

    StringStorage &operator=(StringStorage &&other) noexcept
    {
        if (this != &other)
        {
            if (isHeap())
                release(block());
            m_words = other.m_words;
            other.m_words = Words{};
        }
        return *this;
    }

    void swap(StringStorage &other) noexcept
    {
        Words const words = m_words;
        m_words = other.m_words;
        other.m_words = words;
    }

    int length() const noexcept { return isHeap() ? block()->length : m_words.lengthWord; }

    int capacity() const noexcept { return isHeap() ? block()->capacity : InlineCapacity; }

    TCodeUnit const *units() const noexcept { return isHeap() ? block()->units() : m_words.units; }

    /// The units, for writing: a shared block is detached first.
    TCodeUnit *writableUnits()
    {
        if (!isHeap())
            return m_words.units;
        if (isShared())
            relocate(block()->capacity, block()->length);
        return block()->units();
    }

    /// Appends one unit.
    void append(TCodeUnit unit)
    {
        if (isHeap())
        {
            // Unsigned, because the processor passes a stored length on to the next call's load at once only
            // where the load does not extend the sign.
            StringBlock *const own = block();
            auto const end = static_cast<std::uint32_t>(own->length);
            if (end + 1 < static_cast<std::uint32_t>(own->capacity) && !isShared())
            {
                TCodeUnit *const units = own->units();
                units[end] = unit;
                units[end + 1] = 0;
                own->length = static_cast<std::int32_t>(end + 1);
                return;
            }
        }
        appendSlowly(unit);
    }

    /// Sets the length to `length` units (a negative one counts as 0), growing by the growth rule, and
    /// writes the terminator. Text up to the smaller of both lengths is kept; units beyond the old length
    /// hold anything. A shared block is detached.
    void setLength(int length);

    /// `setLength` to a length that is not negative, for a caller that overwrites everything: nothing is
    /// kept, so nothing is copied. Returns the units, for writing.
    TCodeUnit *setLengthForOverwrite(int length)
    {
        if (isHeap() || length >= InlineCapacity)
            return setLengthForOverwriteOnHeap(length);
        setInlineLength(length);
        return m_words.units;
    }

    /// Cuts off what a caller did not need after all of the room that it has just asked for.
    void shorten(int length) noexcept
    {
        if (isHeap())
            setBlockLength(length);
        else
            setInlineLength(length);
    }

    /// Makes the text empty without allocating: an unshared block is kept, a shared one let go.
    void clear() noexcept
    {
        StringStorage const empty;
        *this = empty; // by copy: a move would give the block back
    }

    /// Makes room for at least `length` units and the terminator.
    void reserve(int length);

    /// Cuts the capacity down to what the text needs.
    void squeeze();

    /// The length as `int`. Throws when it is beyond what an `int` can hold.
    static int checkedLength(std::int64_t length);

    static void enableConservativeGrowth() noexcept;
    static bool isConservativeGrowth() noexcept;

private:
    struct Words
    {
        alignas(void *) TCodeUnit units[InlineCapacity];
        std::int16_t lengthWord;
    };

    static_assert(sizeof(Words) == 32, "a string is 32 bytes on every target");

    static constexpr std::int16_t HeapLengthWord = -1;

    bool isHeap() const noexcept { return m_words.lengthWord < 0; }

    /// Acquire: having seen the other owner's decrement, its reads of the block lie before our writes.
    bool isShared() const noexcept { return __atomic_load_n(&block()->count, __ATOMIC_ACQUIRE) > 1; }

    StringBlock *block() const noexcept
    {
        void *address;
        std::memcpy(&address, m_words.units, sizeof address);
        return static_cast<StringBlock *>(address);
    }

    void setBlock(StringBlock *block) noexcept
    {
        void *const address = block;
        std::memcpy(m_words.units, &address, sizeof address);
        m_words.lengthWord = HeapLengthWord;
    }

    static void retain(StringBlock *block) noexcept
    {
        __atomic_fetch_add(&block->count, 1, __ATOMIC_SEQ_CST);
    }

    static void release(StringBlock *block) noexcept
    {
        if (__atomic_sub_fetch(&block->count, 1, __ATOMIC_SEQ_CST) == 0)
            free(block);
    }

    /// Out of line: the block goes back to the heap of the library's runtime, whatever the host uses.
    static void free(StringBlock *block) noexcept;

    static StringBlock *allocate(int capacity);
    static int grownCapacity(int request, int capacity);

    void setInlineLength(int length) noexcept
    {
        m_words.units[length] = 0;
        m_words.lengthWord = static_cast<std::int16_t>(length);
    }

    void setBlockLength(int length) noexcept
    {
        StringBlock *const own = block();
        own->length = length;
        own->units()[length] = 0;
    }

    void relocate(int capacity, int kept);
    void setLengthOnHeap(int length, int kept);
    TCodeUnit *setLengthForOverwriteOnHeap(int length);
    void setCapacity(int wanted);
    void copyInlineIntoBlock(StringStorage const &other) noexcept;
    void appendSlowly(TCodeUnit unit);

    Words m_words;
};

} // namespace vansys::detail
