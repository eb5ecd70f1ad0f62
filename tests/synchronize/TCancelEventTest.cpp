#include "vansys/TCancelEvent.h"
#include "vansys/VantrelException.h"

#include "support/RecordedAssertions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
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
        for (Pointer &event : m_events)
            event = Pointer(new TCancelEvent);
        std::sort(m_events.begin(), m_events.end());
        for (std::size_t i = 0; i < m_events.size(); ++i)
            OnSignal(i, [] {});
    }

    /// Does something before the number is logged.
    void OnSignal(std::size_t i, std::function<void()> function)
    {
        m_events[i]->AddOnSignalCallback(this,
                                         [this, i, function]
                                         {
                                             function();
                                             m_log += std::to_string(i);
                                         });
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
    OnSignal(2, [this] { EXPECT_EQ(SetEvents(), "2") << "callbacks come before children"; });
    child->Signal();
    EXPECT_EQ(m_log, "01");
    child->Reset();
    EXPECT_EQ(SetEvents(), "1") << "children are not reset";
    grandchild->Reset();
    parent->Signal();
    EXPECT_EQ(m_log, "012013");
    EXPECT_EQ(SetEvents(), "0123");
}

TEST_F(TCancelEventTest, AddToASetEventSignalsTheChild)
{
    auto const &[parent, child, grandchild, other] = m_events;
    child->Add(grandchild);
    parent->Signal();
    parent->Add(child);
    EXPECT_EQ(SetEvents(), "012");
    parent->Remove(child);
    EXPECT_EQ(SetEvents(), "012");
    child->Reset();
    parent->Signal();
    EXPECT_EQ(SetEvents(), "02");
}

TEST_F(TCancelEventTest, ParentsHoldTheirChildren)
{
    class WatchedEvent : public TCancelEvent
    {
    public:
        explicit WatchedEvent(bool &isDestroyed) : m_isDestroyed(isDestroyed) {}
        ~WatchedEvent() override { m_isDestroyed = true; }

    private:
        bool &m_isDestroyed;
    };

    bool isDestroyed = false;
    {
        TCancelEvent parent;
        parent.AddOnSignalCallback(this, [] { ADD_FAILURE() << "destruction is no signal"; });
        Pointer child(new WatchedEvent(isDestroyed));
        parent.Add(child);
        parent.Add(m_events[0]);
        m_events[1]->Add(child);
        m_events[1]->Remove(child);
        child.reset();
        EXPECT_FALSE(isDestroyed);
    }
    EXPECT_TRUE(isDestroyed);
    EXPECT_EQ(SetEvents(), "");
}

TEST_F(TCancelEventTest, Assertions)
{
    auto const &[parent, child, other, another] = m_events;
    parent->Add(child);
    EXPECT_THROW(parent->Add(child), VantrelException);
    EXPECT_THROW(parent->Remove(other), VantrelException);

    RecordedAssertions assertions;
    using Reports = std::vector<std::string>;
    parent->Add(child);
    EXPECT_EQ(assertions.Take(),
              Reports{"vansys/main/synchronize/TEvent:107: Attempted to insert duplicate event."});
    parent->Remove(other);
    EXPECT_EQ(assertions.Take(), Reports{"vansys/main/synchronize/TEvent:118: it != m_childEvents.end()"});
    parent->Signal();
    EXPECT_EQ(m_log, "01") << "there once";
    parent->Add(child);
    EXPECT_EQ(m_log, "011") << "let pass, a second time is like a first one";
}

TEST_F(TCancelEventTest, NullChildren)
{
    Pointer const parent = m_events[0];
    parent->Add(m_events[1]);
    parent->Add(nullptr);
    EXPECT_THROW(parent->Signal(), VantrelException);
    EXPECT_EQ(SetEvents(), "0") << "null is the first by address";
    parent->Remove(nullptr);
    EXPECT_THROW(parent->Add(nullptr), VantrelException);
    EXPECT_NO_THROW(parent->Signal()) << "it was not added";

    RecordedAssertions assertions;
    parent->Add(nullptr);
    parent->Signal();
    EXPECT_EQ(assertions.Take(),
              std::vector<std::string>(2, "vansys/public/vansys/ReferenceCount:361: m_ptr"));
    EXPECT_EQ(m_log, "00101");
}

TEST_F(TCancelEventTest, ExceptionsEndTheWalkAndReleaseTheLock)
{
    auto const &[parent, first, second, third] = m_events;
    parent->Add(first);
    parent->Add(second);
    OnSignal(1, [] { throw 1; });
    EXPECT_THROW(parent->Signal(), int);
    EXPECT_EQ(SetEvents(), "01");
    EXPECT_EQ(m_log, "0");
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
    TCancelEvent *const other = new TCancelEvent; // its place among them is not known
    parent->Add(Pointer(other));
    bool isOver = false;
    other->AddOnSignalCallback(this,
                               [this, other, &isOver]
                               {
                                   m_events[0]->Remove(
                                       Pointer(other)); // the last reference but that of the walk
                                   isOver = true;
                               });
    OnSignal(1,
             [this]
             {
                 m_events[0]->Remove(m_events[1]);
                 m_events[0]->Remove(m_events[2]);
                 m_events[0]->Add(m_events[3]); // signalled at once, and in its turn
             });
    parent->Signal();
    EXPECT_TRUE(isOver);
    EXPECT_EQ(m_log, "0313");
    parent->Signal();
    EXPECT_EQ(m_log, "031303");
}
