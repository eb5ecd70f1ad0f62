// Proves that the cross-built oneTBB works: that threads, and an exception that the DLL throws, cross its
// border.

#include <gtest/gtest.h>
#include <tbb/concurrent_queue.h>

#include <thread>

TEST(TbbDependency, ThreadsWaitForEachOtherAndAbortIsCaughtByType)
{
    int const count = 10000;
    tbb::concurrent_bounded_queue<int> queue;
    queue.set_capacity(3); // so that each side has to wait for the other again and again
    bool isAborted = false;
    int received = 0;
    std::thread consumer(
        [&]
        {
            try
            {
                for (int value = 0;; ++received)
                {
                    queue.pop(value);
                    EXPECT_EQ(value, received);
                }
            }
            catch (tbb::user_abort const &)
            {
                isAborted = true;
            }
        });
    for (int i = 0; i < count; ++i)
        queue.push(i);
    // An abort reaches only those who wait already: a waiting pop makes the size negative.
    while (queue.size() >= 0)
        std::this_thread::yield();
    queue.abort();
    consumer.join();
    EXPECT_TRUE(isAborted);
    EXPECT_EQ(received, count);
}
