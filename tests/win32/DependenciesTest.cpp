// Proves that the cross-built ICU and oneTBB work: that ICU finds its data, where a broken build fails, and
// that objects, exceptions and threads cross the borders of the DLLs.
#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <tbb/concurrent_queue.h>
#include <unicode/coll.h>
#include <unicode/gregocal.h>
#include <unicode/ucnv.h>

TEST(IcuDependency, CalendarKnowsDaylightSavingTime)
{
    auto status = U_ZERO_ERROR;
    icu::GregorianCalendar calendar(icu::TimeZone::createTimeZone("Europe/Stockholm"), status);
    ASSERT_TRUE(U_SUCCESS(status)) << u_errorName(status);

    // The last second before the clocks go forward, and the next one.
    calendar.set(2024, UCAL_MARCH, 31, 1, 59, 59);
    EXPECT_EQ(UCAL_SUNDAY, calendar.get(UCAL_DAY_OF_WEEK, status));
    EXPECT_EQ(0, calendar.get(UCAL_DST_OFFSET, status));
    calendar.add(UCAL_SECOND, 1, status);
    EXPECT_EQ(3, calendar.get(UCAL_HOUR_OF_DAY, status));
    EXPECT_EQ(3600 * 1000, calendar.get(UCAL_DST_OFFSET, status));
    // 2024-03-31T01:00:00Z: an error in 64-bit or floating-point arithmetic shows here.
    calendar.set(UCAL_MILLISECOND, 0);
    EXPECT_EQ(1711846800000.0, calendar.getTime(status));
    EXPECT_TRUE(U_SUCCESS(status)) << u_errorName(status);
}

TEST(IcuDependency, CollatorFollowsTheLanguage)
{
    struct
    {
        char const *language;
        std::vector<icu::UnicodeString> sorted;
    } const cases[] = {
        {"sv", {u"a", u"z", u"\u00e5", u"\u00e4", u"\u00f6"}},
        {"de", {u"a", u"\u00e5", u"\u00e4", u"\u00f6", u"z"}},
    };
    for (auto const &test : cases)
    {
        SCOPED_TRACE(test.language);
        auto status = U_ZERO_ERROR;
        std::unique_ptr<icu::Collator> const collator(
            icu::Collator::createInstance(icu::Locale(test.language), status));
        ASSERT_TRUE(U_SUCCESS(status)) << u_errorName(status);

        std::vector<icu::UnicodeString> letters{u"z", u"\u00f6", u"\u00e4", u"\u00e5", u"a"};
        std::sort(letters.begin(), letters.end(),
                  [&](auto const &left, auto const &right)
                  {
                      auto const result = collator->compare(left, right, status);
                      return result == UCOL_LESS;
                  });
        EXPECT_TRUE(U_SUCCESS(status)) << u_errorName(status);
        EXPECT_TRUE(test.sorted == letters);
    }
}

TEST(IcuDependency, ConverterHasItsTable)
{
    auto status = U_ZERO_ERROR;
    // Of those that are in the data, not in the code.
    std::unique_ptr<UConverter, decltype(&ucnv_close)> const converter(ucnv_open("Shift_JIS", &status),
                                                                       &ucnv_close);
    ASSERT_TRUE(U_SUCCESS(status)) << u_errorName(status);
    char bytes[8] = {};
    EXPECT_EQ(2, ucnv_fromUChars(converter.get(), bytes, sizeof bytes, u"\u65e5", 1, &status));
    EXPECT_EQ("\x93\xfa", std::string(bytes));
}

TEST(TbbDependency, BoundedQueueBlocksAndKeepsOrder)
{
    auto const count = 10000;
    tbb::concurrent_bounded_queue<int> queue;
    queue.set_capacity(3); // so that each side has to wait for the other again and again

    std::thread producer(
        [&]
        {
            for (auto i = 0; i < count; ++i)
            {
                queue.push(i);
            }
        });
    auto inOrder = true;
    for (auto i = 0; i < count; ++i)
    {
        auto value = -1;
        queue.pop(value);
        inOrder = inOrder && value == i;
    }
    producer.join();
    EXPECT_TRUE(inOrder);
    EXPECT_TRUE(queue.empty());
}

TEST(TbbDependency, AbortIsCaughtByType)
{
    tbb::concurrent_bounded_queue<int> queue;
    auto aborted = false;
    std::thread consumer(
        [&]
        {
            try
            {
                int value;
                queue.pop(value);
            }
            catch (tbb::user_abort const &) // thrown by the DLL
            {
                aborted = true;
            }
        });
    // An abort reaches only those who wait already: a waiting pop makes the size negative.
    while (queue.size() >= 0)
    {
        std::this_thread::yield();
    }
    queue.abort();
    consumer.join();
    EXPECT_TRUE(aborted);
}
