// What the layer keeps to itself: the families, the mapping of enumerations, the reports of failures.
#include "vansys/ICUVersion.h"

#include "main/icu/EnumerationMapping.h"
#include "main/icu/StringImpl.h"
#include "support/FailingAllocations.h"
#include "support/FailureMessage.h"
#include "support/RecordedAssertions.h"

#include <gtest/gtest.h>
#include <unicode/gregocal.h>

#include <climits>
#include <cstdlib>
#include <numeric>

using VanICU::ICULocale;
using VanICU::ICUString;
using VanICU::setIcuVersion;

TEST(IcuFamily, OnlyFourSelectsTheFirst)
{
    EXPECT_EQ(VanICU::getIcuVersion(), 4);
    for (int const version : {5, 55, 0, -4, 44, INT_MAX, 4})
    {
        setIcuVersion(version);
        EXPECT_EQ(VanICU::getIcuVersion(), version);
        auto const &expected = version == 4 ? VanICU44::Family::Functions : VanICU55::Family::Functions;
        EXPECT_EQ(&vansys::detail::SelectedFunctions(), &expected) << version;
        auto const text = ICUString::createInstance("a");
        EXPECT_EQ(dynamic_cast<VanICU44::ICUString44Impl *>(text.get()) != nullptr, version == 4);
        EXPECT_EQ(dynamic_cast<VanICU55::ICUString55Impl *>(text.get()) != nullptr, version != 4);
        auto const locale = ICULocale::createInstance("de", "AT");
        setIcuVersion(4);
        EXPECT_STREQ(vansys::detail::Unwrap(*locale).getCountry(), "AT") << "of either family";
    }
}

namespace
{

/// Expects ICU's values for the layer's from `first` on, and the message for all others.
template <class Own>
void expectMapping(int first, std::vector<int> const &icu, TStringCore const &message)
{
    auto const map = [](int value)
    { return static_cast<int>(vansys::detail::ToIcu(static_cast<Own>(value))); };
    int next = first;
    for (int const expected : icu)
        EXPECT_EQ(map(next++), expected);
    for (int const value : {first - 1, next, INT_MIN, INT_MAX})
        EXPECT_EQ(FailureMessage<VantrelException>([&] { map(value); }), message);
}

} // namespace

TEST(IcuEnumerations, AreMappedAndRefuseOtherValues)
{
    using namespace VanICU;
    expectMapping<ICUEStyle>(0, {0, 1, 2, 3}, "Unknown UEStyle");
    expectMapping<ICUCalendarDateField>(0, {1, 2, 5, 11, 12, 13, 14, 3, 17, 7, 6},
                                        "Unknown calendar date field.");
    expectMapping<ICUDayOfWeek>(1, {1, 2, 3, 4, 5, 6, 7}, "Unknown day of week.");
    expectMapping<ICUSymbolWidth>(0, {0, 1, 2, 3}, "Unknown width type.");
    expectMapping<ICUSymbolContext>(0, {0, 1, 2}, "Unknown context type.");
    std::vector<int> symbols(19);
    std::iota(symbols.begin(), symbols.end(), 0);
    expectMapping<ICUNumberSymbolId>(0, symbols, "Unknown symbol id.");
}

namespace
{

/// A wrapper class as small as can be.
struct Months
{
    virtual ~Months() = default;
};

struct MonthsImpl final : vansys::detail::Wrapper<Months, icu::Calendar>
{
    using Wrapper::Checked;
    using Wrapper::Wrapper;
};

template <class Family>
void expectReports(std::string const &digits)
{
    UErrorCode made = U_ZERO_ERROR;
    MonthsImpl const calendar(std::make_unique<icu::GregorianCalendar>(2024, UCAL_MARCH, 1, made));
    MonthsImpl const nothing(nullptr);
    auto const month = [](MonthsImpl const &wrapper, UErrorCode result)
    {
        return wrapper.Checked(Family::CalendarSource, 7,
                               [=](auto &object, auto &status)
                               {
                                   int const value = object.get(UCAL_MONTH, status);
                                   status = result;
                                   return value;
                               });
    };
    RecordedAssertions const recorded;
    EXPECT_EQ(month(calendar, U_USING_DEFAULT_WARNING), 2);
    calendar.Checked(Family::DecimalFormatSource, 8, [](auto &, auto &) {});
    EXPECT_TRUE(recorded.Take().empty());
    EXPECT_EQ(month(nothing, U_ZERO_ERROR), 0);
    EXPECT_EQ(month(calendar, U_PARSE_ERROR), 2);
    calendar.Checked(Family::DecimalFormatSource, 8, [](auto &, auto &status) { status = U_PARSE_ERROR; });
    EXPECT_EQ(recorded.Take(),
              (std::vector{"vansys/main/icu/Calendar" + digits + ":7: ptr != nullptr",
                           "vansys/main/icu/Calendar" + digits + ":7: U_SUCCESS(status)",
                           "vansys/main/icu/DecimalFormat" + digits + ":8: U_SUCCESS(status)"}));
    EXPECT_EQ(Family::DateFormatSource, "vansys/main/icu/DateFormat" + digits);
    EXPECT_STREQ(Family::SimpleDateFormatSource, "vansys/main/icu/SimpleDateFormat44");
}

} // namespace

TEST(IcuWrapper, ReportsFailuresAndGoesOn)
{
    expectReports<VanICU44::Family>("44");
    expectReports<VanICU55::Family>("55");
}

// Failing allocations, those of ICU among them

namespace
{

/// Calls a factory, and treats a null result as the failure that it stands for. The factory must not throw.
template <class Factory>
auto orThrow(Factory const &factory)
{
    auto result = [&]() noexcept { return factory(); }();
    if (!result)
        throw std::bad_alloc();
    return result;
}

} // namespace

TEST(IcuAllocationFailure, IsNullOrOutOfMemory)
{
    // ICU takes its memory from here on from where allocations can be made to fail. Nothing changes for what
    // it holds already: these are the functions that it uses by itself.
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(
        nullptr, [](void const *, std::size_t size) { return std::malloc(size); },
        [](void const *, void *memory, std::size_t size) { return std::realloc(memory, size); },
        [](void const *, void *memory) { std::free(memory); }, &status);
    ASSERT_EQ(status, U_ZERO_ERROR);

    auto const failEach = [](int failures, auto const &operation)
    {
        operation(); // what ICU loads once and keeps is there before anything fails
        EXPECT_GE(failEachAllocation([] {}, operation, [] {}), failures);
    };
    TStringCore const text(u'x', 100);
    std::string const utf8 = text.toStdString();
    auto const failFactory = [&](int failures, auto const &make)
    { failEach(failures, [&] { orThrow(make); }); };
    failFactory(3, [] { return ICULocale::createInstance("de", "AT"); });
    failFactory(2, [] { return ICUString::createInstance(); });
    failFactory(3, [&] { return ICUString::createInstance(utf8.c_str()); });
    // For this one, ICU asks for less memory when it does not get what it likes.
    failFactory(1, [&] { return ICUString::createInstance(text.constData()); });
    failEach(1, [] { TStringCore::fromLocal8Bit("inline"); });
    failEach(2, [&] { TStringCore::fromLocal8Bit(utf8.c_str()); });
    bool isComplete = false;
    failEach(4, [&] { (void)text.toLocal8Bit(&isComplete); });

    // Longer than what ICU holds inside its object, and its own copy does not tell that it failed.
    icu::Locale const longName(("de_AT@collation=" + utf8 + utf8).c_str());
    using vansys::detail::LocaleAccess;
    auto const copy = [&] { return orThrow([&] { return LocaleAccess::Wrap<VanICU44::Family>(longName); }); };
    failEach(4, [&] { EXPECT_STREQ(copy()->getName(), longName.getName()); });

    icu::Locale::getCanada(); // ICU itself does not survive without memory here
    EXPECT_GE(failEachAllocation([] {}, [] { ICULocale::getCanada(); }, [] {}), 3);
    EXPECT_STREQ(ICULocale::getCanada().getName(), "en_CA") << "the next caller makes it";
}

TEST(IcuAllocationFailure, WritingUtf8LeavesTheResultAsItWas)
{
    TStringCore const text(u'\u20AC', 600); // more bytes than ICU has room for without asking
    auto const string = ICUString::createInstance(text.constData());
    std::string result;
    EXPECT_GE(failEachAllocation([&] { result = "before"; }, [&] { string->toUTF8(result); },
                                 [&] { EXPECT_EQ(result, "before"); }),
              1);
    EXPECT_EQ(result, "before" + text.toStdString());
}
