// What the layer keeps to itself: the families, the mapping of enumerations, the reports of failures.
#include "vansys/ICUVersion.h"
#include "vansys/VantrelException.h"

#include "main/icu/EnumerationMapping.h"
#include "main/icu/StringImpl.h"
#include "support/FailingAllocations.h"
#include "support/RecordedAssertions.h"

#include <gtest/gtest.h>
#include <unicode/gregocal.h>

#include <climits>
#include <cstdlib>
#include <type_traits>

using VanICU::ICULocale;
using VanICU::ICUString;
using VanICU::setIcuVersion;

TEST(IcuFamily, OnlyFourSelectsTheFirst)
{
    for (int const version : {5, 55, 0, -4, 44, 4})
    {
        setIcuVersion(version);
        auto const &expected = version == 4 ? VanICU44::Family::Functions : VanICU55::Family::Functions;
        EXPECT_EQ(&vansys::detail::SelectedFunctions(), &expected) << version;
        auto const text = ICUString::createInstance("a");
        EXPECT_EQ(dynamic_cast<VanICU44::ICUString44Impl *>(text.get()) != nullptr, version == 4);
        EXPECT_EQ(dynamic_cast<VanICU55::ICUString55Impl *>(text.get()) != nullptr, version != 4);
        auto const locale = ICULocale::createInstance("de", "AT");
        setIcuVersion(4);
        EXPECT_STREQ(vansys::detail::Unwrap(*locale).getCountry(), "AT") << "of either family";
    }
    EXPECT_FALSE(std::is_copy_constructible_v<VanICU44::ICUString44Impl>);
    EXPECT_FALSE(std::is_copy_constructible_v<VanICU55::ICULocale55Impl>);
}

namespace
{

/// Expects ICU's values for the layer's from `first` on, and the message for all others.
template <class Own>
void expectMapping(int first, std::vector<int> const &icu, TStringCore const &message)
{
    int const last = first + static_cast<int>(icu.size()) - 1;
    for (int value = first; value <= last; ++value)
        EXPECT_EQ(static_cast<int>(vansys::detail::ToIcu(static_cast<Own>(value))),
                  icu[std::size_t(value - first)]);
    for (int const value : {first - 1, last + 1, INT_MIN, INT_MAX})
    {
        try
        {
            vansys::detail::ToIcu(static_cast<Own>(value));
            ADD_FAILURE() << value << message.toStdString();
        }
        catch (VantrelException const &exception)
        {
            EXPECT_EQ(exception.GetMessagesFront(), message);
        }
    }
}

} // namespace

TEST(IcuEnumerations, AreMappedAndRefuseOtherValues)
{
    expectMapping<VanICU::ICUEStyle>(0, {0, 1, 2, 3}, "Unknown UEStyle");
    expectMapping<VanICU::ICUCalendarDateField>(0, {1, 2, 5, 11, 12, 13, 14, 3, 17, 7, 6},
                                                "Unknown calendar date field.");
    expectMapping<VanICU::ICUDayOfWeek>(1, {1, 2, 3, 4, 5, 6, 7}, "Unknown day of week.");
    expectMapping<VanICU::ICUSymbolWidth>(0, {0, 1, 2, 3}, "Unknown width type.");
    expectMapping<VanICU::ICUSymbolContext>(0, {0, 1, 2}, "Unknown context type.");
    expectMapping<VanICU::ICUNumberSymbolId>(
        0, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}, "Unknown symbol id.");
}

namespace
{

/// A wrapper class as small as can be.
struct Months
{
    virtual ~Months() = default;
    virtual int Get(UErrorCode result) const = 0;
    virtual void Check(UErrorCode result) const = 0;
};

template <class Family>
struct MonthsImpl final : vansys::detail::Wrapper<Months, icu::Calendar>
{
    using Wrapper::Wrapper;

    int Get(UErrorCode result) const override
    {
        return Checked(Family::CalendarSource, 7,
                       [=](auto &object, auto &status)
                       {
                           int const month = object.get(UCAL_MONTH, status);
                           status = result;
                           return month;
                       });
    }

    void Check(UErrorCode result) const override
    {
        Checked(Family::DecimalFormatSource, 8, [=](auto &, auto &status) { status = result; });
    }
};

} // namespace

TEST(IcuWrapper, ReportsFailuresAndGoesOn)
{
    using Reports = std::vector<std::string>;
    auto const wrap = [](auto *object)
    { return vansys::detail::Wrap<MonthsImpl>(std::unique_ptr<icu::Calendar>(object)); };
    for (std::string const digits : {"44", "55"})
    {
        UErrorCode status = U_ZERO_ERROR;
        setIcuVersion(digits == "44" ? 4 : 55);
        auto const nothing = wrap(static_cast<icu::Calendar *>(nullptr));
        auto const calendar = wrap(new icu::GregorianCalendar(2024, UCAL_MARCH, 1, status));
        setIcuVersion(4);
        RecordedAssertions const recorded;
        EXPECT_EQ(calendar->Get(U_USING_DEFAULT_WARNING), 2);
        calendar->Check(U_ZERO_ERROR);
        EXPECT_EQ(recorded.Take(), Reports{});
        EXPECT_EQ(nothing->Get(U_ZERO_ERROR), 0);
        EXPECT_EQ(calendar->Get(U_PARSE_ERROR), 2);
        calendar->Check(U_PARSE_ERROR);
        EXPECT_EQ(recorded.Take(),
                  (Reports{"vansys/main/icu/Calendar" + digits + ":7: ptr != nullptr",
                           "vansys/main/icu/Calendar" + digits + ":7: U_SUCCESS(status)",
                           "vansys/main/icu/DecimalFormat" + digits + ":8: U_SUCCESS(status)"}));
    }
    EXPECT_STREQ(VanICU44::Family::DateFormatSource, "vansys/main/icu/DateFormat44");
    EXPECT_STREQ(VanICU55::Family::DateFormatSource, "vansys/main/icu/DateFormat55");
    for (auto const *source :
         {VanICU44::Family::SimpleDateFormatSource, VanICU55::Family::SimpleDateFormatSource})
        EXPECT_STREQ(source, "vansys/main/icu/SimpleDateFormat44");
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
    failEach(3, [] { orThrow([] { return ICULocale::createInstance("de", "AT"); }); });
    failEach(2, [] { orThrow([] { return ICUString::createInstance(); }); });
    failEach(3, [&] { orThrow([&] { return ICUString::createInstance(utf8.c_str()); }); });
    // For this one, ICU asks for less memory when it does not get what it likes.
    failEach(1, [&] { orThrow([&] { return ICUString::createInstance(text.constData()); }); });
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
