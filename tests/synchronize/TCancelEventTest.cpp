#include "vansys/TCancelEvent.h"
#include "vansys/VantrelException.h"

#include "support/RecordedAssertions.h"
#include "support/Stress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using Pointer = RefCntPtr<TCancelEvent, RefCntObject>;

/// Four events, in ascending order of their addresses. Each logs its number when it is signalled.
class TCancelEventTest : public testing::Test
{
protected:
    TCancelEventTest()
    {
        std::generate(m_events.begin(), m_events.end(), [] { return new TCancelEvent; });
        std::sort(m_events.begin(), m_events.end());
        for (std::size_t i = 0; i < m_events.size(); ++i)
            OnSignal(i, [] {});
    }

    /// Does something before the number is logged.
    void OnSignal(std::size_t i, std::function<void()> function)
    {
        m_events[i]->AddOnSignalCallback(this, [=, this] { function(), m_log += std::to_string(i); });
    }

    std::string SetEvents() const
    {
        std::string set;
        for (std::size_t i = 0; i < m_events.size(); ++i)
            set += m_events[i]->IsSet() ? std::to_string(i) : "";
        return set;
    }

    std::array<Pointer, 4> m_events;
    std::string m_log;
};

} // namespace

TEST_F(TCancelEventTest, SignalsTheTreeDepthFirst)
{
    auto const &[child, grandchild, parent, otherChild] = m_events;
    parent->Add(otherChild);
    parent->Add(child);
    child->Add(grandchild);
    OnSignal(2, [this] { m_log += '<' + SetEvents() + '>'; });
    child->Signal();
    EXPECT_EQ(std::exchange(m_log, ""), "01");
    child->Reset();
    EXPECT_EQ(SetEvents(), "1") << "children are not reset";
    grandchild->Reset();
    parent->Signal();
    EXPECT_EQ(std::exchange(m_log, ""), "<2>2013") << "callbacks come before children";
    EXPECT_EQ(SetEvents(), "0123");
    parent->Remove(child);
    parent->Signal();
    EXPECT_EQ(std::exchange(m_log, ""), "<0123>23");
    parent->Add(child);
    EXPECT_EQ(m_log, "01") << "at once, as the parent is set";
}

TEST_F(TCancelEventTest, ParentsHoldTheirChildren)
{
    auto const owned = std::make_shared<int>();
    {
        TCancelEvent parent;
        Pointer child(new TCancelEvent);
        child->AddOnSignalCallback(nullptr, [owned] { ADD_FAILURE() << "destruction is no signal"; });
        parent.Add(child);
        m_events[1]->Add(child);
        m_events[1]->Remove(child);
        child.reset();
        EXPECT_EQ(owned.use_count(), 2);
    }
    EXPECT_EQ(owned.use_count(), 1);
}

TEST_F(TCancelEventTest, Assertions)
{
    auto const &[parent, child, other, another] = m_events;
    parent->Add(child);
    EXPECT_THROW(parent->Add(child), VantrelException);
    EXPECT_THROW(parent->Remove(other), VantrelException);
    parent->Add(nullptr);
    EXPECT_THROW(parent->Signal(), VantrelException);
    EXPECT_EQ(SetEvents(), "0") << "null is the first by address";
    parent->Remove(nullptr);
    EXPECT_THROW(parent->Add(nullptr), VantrelException);
    EXPECT_NO_THROW(parent->Signal()) << "it was not added";
    EXPECT_EQ(std::exchange(m_log, ""), "001");

    RecordedAssertions assertions;
    parent->Remove(other);
    parent->Add(child);
    parent->Add(nullptr);
    parent->Signal();
    EXPECT_EQ(m_log, "101") << "let pass, a second time is like a first one, and yet the child is there once";
    std::string const null = "vansys/public/vansys/ReferenceCount:361: m_ptr";
    EXPECT_EQ(assertions.Take(),
              (std::vector<std::string>{
                  "vansys/main/synchronize/TEvent:118: it != m_childEvents.end()",
                  "vansys/main/synchronize/TEvent:107: Attempted to insert duplicate event.", null, null}));
}

TEST_F(TCancelEventTest, ExceptionsEndTheWalkAndReleaseTheLock)
{
    auto const &[parent, first, second, third] = m_events;
    parent->Add(first);
    parent->Add(second);
    OnSignal(1, [] { throw 1; });
    EXPECT_THROW(parent->Signal(), int);
    // On another thread, as this one would get into a lock that it had kept.
    std::thread([this] { m_events[0]->Remove(m_events[1]); }).join();
    EXPECT_THROW(parent->Add(first), int);
    parent->Signal();
    EXPECT_EQ(m_log, "002") << "what could not be signalled was not added";
}

TEST_F(TCancelEventTest, CallbacksMayChangeTheChildren)
{
    auto const &[parent, first, second, third] = m_events;
    parent->Add(first);
    parent->Add(second);
    auto const change = [this]
    {
        m_events[0]->Remove(m_events[2]);
        m_events[0]->Add(m_events[3]); // signalled at once, and in its turn
        m_events[0]->Remove(m_events[1]);
        m_events[1].reset(); // the last reference but that of the walk
    };
    OnSignal(1, change);
    parent->Signal();
    EXPECT_EQ(m_log, "0313");
}

// Nothing reaches what has been removed; what a callback used is gone with the round.
TEST(TCancelEvent, TreesAndCallbacksComeAndGoDuringSignals)
{
    TCancelEvent const root;
    auto const round = [&](StressRandom &random)
    {
        Pointer const child(new TCancelEvent);
        Pointer const grandchild(new TCancelEvent);
        int runs = 0; // changed under the lock of the callbacks only
        root.AddOnSignalCallback(&runs, [&runs] { ++runs; });
        root.Add(child);
        child->Add(grandchild);
        if (random() % 2 == 0)
        {
            root.Signal();
            EXPECT_TRUE(child->IsSet() && grandchild->IsSet());
            root.Reset();
        }
        root.RemoveOnSignalCallback(&runs);
        root.Remove(child);
        int const before = runs;
        child->Reset();
        grandchild->Reset();
        root.Signal();
        EXPECT_FALSE(child->IsSet() || grandchild->IsSet());
        EXPECT_EQ(runs, before);
    };
    RunStress(3, round);
}
