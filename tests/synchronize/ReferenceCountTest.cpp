#include "vansys/ReferenceCount.h"
#include "vansys/VantrelException.h"

#include "support/RecordedAssertions.h"
#include "support/Stress.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <numeric>
#include <set>
#include <unordered_set>
#include <vector>

namespace
{

/// Counts its objects.
class Node : public RefCntObject
{
public:
    Node() { ++s_alive; }
    Node(Node const &other) : RefCntObject(other) { ++s_alive; }
    Node &operator=(Node const &) = default;

    int RemoveInternal() const { return RemoveReferenceInternal(); }

    RefCntPtr<Node, RefCntObject> m_next;

    inline static int s_alive = 0;

protected:
    ~Node() override { --s_alive; }
};

class Leaf : public Node
{
};

using NodePtr = RefCntPtr<Node, RefCntObject>;

} // namespace

TEST(ReferenceCount, ObjectIsACountAndAGuardWord)
{
    class Flat : public RefCntObjectNonVirtualBase<Flat> // has no virtual functions
    {
    };
    auto *const flat = new Flat;
    std::int32_t words[2] = {};
    static_assert(sizeof *flat == sizeof words);
    flat->AddReference();
    flat->AddReference();
    std::memcpy(words, static_cast<void const *>(flat), sizeof words);
    EXPECT_EQ(words[0], 2);
    EXPECT_EQ(static_cast<std::uint32_t>(words[1]), 0xC466E877u);
    EXPECT_EQ(flat->RemoveReference(), 1);
    EXPECT_EQ(flat->RemoveReference(), 0) << "and a leak, if it has not destroyed the object";
}

TEST(ReferenceCount, CountsButNeverCopiesTheCount)
{
    auto *const node = new Node;
    EXPECT_EQ(node->UseCount(), 0);
    EXPECT_EQ(node->AddReference(), 1);
    EXPECT_EQ(node->AddReference(), 2);
    auto *const copy = new Node(*node);
    EXPECT_EQ(copy->AddReference(), 1);
    *copy = *node;
    *node = *copy;
    EXPECT_EQ(copy->UseCount(), 1);
    EXPECT_EQ(node->UseCount(), 2);

    EXPECT_EQ(copy->RemoveInternal(), 0); // never destroys
    EXPECT_EQ(copy->RemoveReference(), -1);
    EXPECT_EQ(Node::s_alive, 2) << "only the step to 0 destroys";
    copy->AddReference();
    copy->AddReference();
    EXPECT_EQ(copy->RemoveReference(), 0);
    EXPECT_EQ(node->RemoveReference(), 1);
    EXPECT_EQ(node->RemoveReference(), 0);
    EXPECT_EQ(Node::s_alive, 0);
}

TEST(RefCntPtr, HoldsOneReference)
{
    {
        NodePtr first = new Node;
        NodePtr second = first;
        NodePtr third = std::move(second);
        EXPECT_EQ(first->UseCount(), 2);
        EXPECT_EQ(second, nullptr); // NOLINT(bugprone-use-after-move): moving leaves null
        second = third;
        NodePtr &alias = third;
        third = alias;
        third = std::move(alias);
        third.reset(third.get());
        EXPECT_EQ(third.get(), first.get());
        EXPECT_EQ(first->UseCount(), 3);
        third.reset();
        second = nullptr;
        EXPECT_EQ(first->UseCount(), 1);

        RefCntPtr<Leaf, RefCntObject> leaf = new Leaf;
        RefCntPtr<Node const, RefCntObject> base = leaf;
        EXPECT_EQ(base, leaf);
        EXPECT_EQ(leaf->UseCount(), 2);
        base = std::move(leaf);
        EXPECT_EQ(base->UseCount(), 1);
        EXPECT_FALSE(leaf); // NOLINT(bugprone-use-after-move)
        EXPECT_EQ(Node::s_alive, 2);
    }
    EXPECT_EQ(Node::s_alive, 0);
}

TEST(RefCntPtr, AssignmentFromAPartOfTheOldObject)
{
    NodePtr list = new Node;
    list->m_next = new Node;
    list->m_next->m_next = new Node;
    list = list->m_next;
    EXPECT_EQ(Node::s_alive, 2);
    list = std::move(list->m_next);
    EXPECT_EQ(Node::s_alive, 1);
    list.reset(list->m_next.get());
    EXPECT_EQ(Node::s_alive, 0);
}

TEST(RefCntPtr, DestructorFindsThePointerChangedAlready)
{
    class Held : public RefCntObject
    {
    public:
        explicit Held(RefCntPtr<Held, RefCntObject> const &holder) : m_holder(holder) {}

    private:
        ~Held() override { EXPECT_NE(m_holder.get(), this); }

        RefCntPtr<Held, RefCntObject> const &m_holder;
    };
    RefCntPtr<Held, RefCntObject> holder;
    holder = new Held(holder);
    holder = new Held(holder);
    holder.reset();
}

TEST(RefCntPtr, ComparesAndHashesByAddress)
{
    NodePtr const one = new Node;
    NodePtr const other = new Node;
    NodePtr const null;
    EXPECT_TRUE(one == NodePtr(one) && one != other && one != null && one != nullptr && nullptr != one);
    EXPECT_TRUE(null == nullptr && nullptr == null && null == NodePtr(nullptr) && !null && one);
    EXPECT_EQ((std::set<NodePtr>{one, other, null, one}).size(), 3u);
    EXPECT_EQ((std::unordered_set<NodePtr, RefCntPtrHash>{one, other, null, one}).size(), 3u);
    EXPECT_NE(RefCntPtrHash()(one), RefCntPtrHash()(other));
}

TEST(RefCntPtr, NullIsNotDereferenced)
{
    NodePtr const null;
    EXPECT_THROW(null.operator->(), VantrelException);
    EXPECT_THROW(*null, VantrelException);
    RecordedAssertions assertions;
    EXPECT_EQ(null.operator->(), nullptr);
    EXPECT_EQ(assertions.Take(), std::vector<std::string>{"vansys/public/vansys/ReferenceCount:361: m_ptr"});
}

/// Threads throw references at each other through one place, and drop them. Whoever drops the last one
/// destroys the object, once, and sees what all others have written into it.
TEST(ReferenceCountStress, DroppedOnManyThreads)
{
    static std::atomic<int> s_balance{0}; // what is written, less what the destructors find
    class Shared : public RefCntObject
    {
    public:
        int m_writes[4] = {}; // plain: the thread sanitizer sees a destructor that comes too early

    private:
        ~Shared() override { s_balance -= std::accumulate(m_writes, std::end(m_writes), 0); }
    };
    std::atomic<int> threads{0};
    std::mutex mutex;
    RefCntPtr<Shared, RefCntObject> place;
    RunStress(4,
              [&](StressRandom &random)
              {
                  thread_local int const number = threads++;
                  RefCntPtr<Shared, RefCntObject> taken = random() % 3 == 0 ? new Shared : nullptr;
                  std::unique_lock lock(mutex);
                  taken ? place.swap(taken) : void(taken = place);
                  lock.unlock();
                  if (!taken)
                      return;
                  std::vector const copies(20, taken);
                  ++taken->m_writes[number];
                  ++s_balance;
              });
    place.reset();
    EXPECT_EQ(s_balance, 0);
}
