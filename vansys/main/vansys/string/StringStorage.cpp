#include "vansys/detail/StringStorage.h"

#include "main/vansys/string/RawText.h"
#include "vansys/TStringCore.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdlib>
#include <limits>

namespace vansys::detail
{

namespace
{

constexpr int MaxInt = std::numeric_limits<int>::max();

// Relaxed: the flag is set before other threads use strings; the atomic only keeps a late setter harmless.
std::atomic<bool> g_conservativeGrowth{false};

/// The smallest power of two that is greater than `value`, which is not negative.
std::int64_t PowerOfTwoAbove(std::int64_t value)
{
    return static_cast<std::int64_t>(std::bit_ceil(static_cast<std::uint64_t>(value) + 1));
}

/// Byte size of a block; throws for sizes that no allocation could have.
std::size_t BlockSize(int capacity)
{
    if (capacity < 0)
        throw TStringCore::Exception("Allocation size less than zero; probable overflow");
    std::uint64_t const bytes =
        static_cast<std::uint64_t>(capacity) * sizeof(TCodeUnit) + sizeof(StringBlock);
    if (bytes > std::numeric_limits<std::size_t>::max())
        throw TStringCore::Exception("Out of memory");
    return static_cast<std::size_t>(bytes);
}

StringBlock *ReallocateBlock(StringBlock *block, int capacity)
{
    auto *const result = static_cast<StringBlock *>(std::realloc(block, BlockSize(capacity)));
    if (!result)
        throw TStringCore::Exception("Out of memory"); // short enough to need no block itself
    result->capacity = capacity;
    return result;
}

} // namespace

void StringStorage::enableConservativeGrowth() noexcept
{
    g_conservativeGrowth.store(true, std::memory_order_relaxed);
}

bool StringStorage::isConservativeGrowth() noexcept
{
    return g_conservativeGrowth.load(std::memory_order_relaxed);
}

/// The capacity for a text of `request` units in a string that has room for `capacity` now. In 64 bits, so
/// that nothing wraps: a result that `int` cannot hold is turned into one that `BlockSize` refuses.
int StringStorage::grownCapacity(int request, int capacity)
{
    if (request < capacity)
        return capacity;
    std::int64_t grown = 0;
    if (isConservativeGrowth())
    {
        // Seven units are the head of the block and the usual overhead of an allocator: with them, a block
        // takes up a full or a three-quarter power of two.
        std::int64_t const needed = std::int64_t{request} + 7;
        std::int64_t const power = PowerOfTwoAbove(needed);
        std::int64_t const threeQuarters = power / 4 * 3;
        std::int64_t const step = needed < threeQuarters ? threeQuarters : power;
        grown = step > MaxInt ? step : step - 7;
    }
    else
        grown = request < 32 ? 32 : PowerOfTwoAbove(request);
    return grown > MaxInt ? -1 : static_cast<int>(grown);
}

int StringStorage::checkedLength(std::int64_t length)
{
    if (length > MaxInt)
        throw TStringCore::Exception("Allocation size less than zero; probable overflow");
    return static_cast<int>(length);
}

StringBlock *StringStorage::allocate(int capacity)
{
    StringBlock *const result = ReallocateBlock(nullptr, capacity);
    result->count = 1;
    result->length = 0;
    result->units()[0] = 0;
    return result;
}

void StringStorage::free(StringBlock *block) noexcept
{
    std::free(block);
}

/// Moves the text to an unshared block of `capacity` units, of which the first `kept` are carried over.
/// Only a block that nobody shares is resized in place.
void StringStorage::relocate(int capacity, int kept)
{
    StringBlock *target = nullptr;
    if (isHeap() && !isShared() && kept > 0)
        target = ReallocateBlock(block(), capacity);
    else
    {
        target = allocate(capacity);
        CopyUnits(target->units(), units(), kept);
        if (isHeap())
            release(block());
    }
    target->length = kept;
    target->units()[kept] = 0;
    setBlock(target);
}

/// For text that is on the heap or is going there.
void StringStorage::setLengthOnHeap(int length, int kept)
{
    int const grown = grownCapacity(length, capacity());
    if (!isHeap() || isShared() || grown != block()->capacity)
        relocate(grown, kept);
    setBlockLength(length);
}

void StringStorage::setLength(int length)
{
    int const wanted = std::max(length, 0);
    if (isHeap() || wanted >= InlineCapacity)
        setLengthOnHeap(wanted, std::min(wanted, this->length()));
    else
        setInlineLength(wanted);
}

TCodeUnit *StringStorage::setLengthForOverwriteOnHeap(int length)
{
    if (isHeap())
        setLengthOnHeap(length, 0);
    else
    {
        setBlock(allocate(grownCapacity(length, InlineCapacity)));
        setBlockLength(length);
    }
    return block()->units();
}

void StringStorage::appendSlowly(TCodeUnit unit)
{
    int const position = length();
    setLength(checkedLength(std::int64_t{position} + 1));
    writableUnits()[position] = unit;
}

void StringStorage::setCapacity(int wanted)
{
    if (wanted != capacity() || (isHeap() && isShared()))
        relocate(wanted, length());
}

void StringStorage::reserve(int length)
{
    if (length < 0)
        throw TStringCore::Exception("Negative allocation size; probable overflow");
    if (length < capacity())
        setCapacity(capacity());
    else if (length < 32 && !isConservativeGrowth())
        setCapacity(32);
    else
        setCapacity(checkedLength(std::int64_t{length} + 1));
}

void StringStorage::squeeze()
{
    setCapacity(std::max(length() + 1, InlineCapacity));
}

/// A block has room for at least `InlineCapacity` units, so any inline text fits.
void StringStorage::copyInlineIntoBlock(StringStorage const &other) noexcept
{
    if (isShared())
    {
        release(block());
        m_words = other.m_words;
        return;
    }
    StringBlock *const own = block();
    own->length = other.m_words.lengthWord;
    CopyUnits(own->units(), other.m_words.units, InlineCapacity);
}

} // namespace vansys::detail
