// What the layer keeps to itself: the families, the mapping of enumerations, the reports of failures.
#include "vansys/ICULocale.h"
#include "vansys/ICUString.h"
#include "vansys/ICUVersion.h"
#include "vansys/VantrelException.h"

#include "main/icu/EnumerationMapping.h"
#include "main/icu/Family.h"
#include "main/icu/LocaleImpl.h"
#include "main/icu/StringImpl.h"
#include "support/FailingAllocations.h"
#include "support/RecordedAssertions.h"

#include <gtest/gtest.h>
#include <unicode/gregocal.h>

#include <climits>
#include <cstdlib>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

using VanICU::ICULocale;
using VanICU::ICUString;
using VanICU::setIcuVersion;

TEST(IcuFamily, OnlyFourSelectsTheFirst)
{
    auto const selected = [] { return &vansys::detail::SelectedFunctions(); };
    auto const *const first = &VanICU44::Family::Functions;
    auto const *const second = &VanICU55::Family::Functions;
    ASSERT_NE(first, second);
    for (int const version : {5, 55, 0, -4, 44})
    {
        setIcuVersion(version);
        EXPECT_EQ(selected(), second) << version;
        EXPECT_TRUE(dynamic_cast<VanICU55::ICUString55Impl *>(ICUString::createInstance("a").get()));
    }
    setIcuVersion(4);
    EXPECT_EQ(selected(), first);
    EXPECT_TRUE(dynamic_cast<VanICU44::ICUString44Impl *>(ICUString::createInstance("a").get()));
    EXPECT_FALSE(std::is_copy_constructible_v<VanICU44::ICULocale44Impl>);
    EXPECT_FALSE(std::is_copy_constructible_v<VanICU55::ICUString55Impl>);
}

TEST(IcuFamily, LocalesAreUnwrappedWhateverTheirFamily)
{
    for (int const version : {55, 4})
    {
        setIcuVersion(version);
        auto const locale = ICULocale::createInstance("de", "AT");
        setIcuVersion(4);
        EXPECT_STREQ(vansys::detail::Unwrap(*locale).getCountry(), "AT");
    }
}

namespace
{

/// What ICU's value is for each of the layer's from `first - 1` on until one past the last; -1 and the
/// message for what is refused.
template <class Own>
std::vector<int> mapAll(int first, int last, std::string const &message)
{
    std::vector<int> result;
    auto const map = [&](int value)
    {
        try
        {
            return static_cast<int>(vansys::detail::ToIcu(static_cast<Own>(value)));
        }
        catch (VantrelException const &exception)
        {
            EXPECT_EQ(exception.GetMessagesFront(), message.c_str());
            return -1;
        }
    };
    for (int value = first - 1; value <= last + 1; ++value)
        result.push_back(map(value));
    EXPECT_EQ(map(INT_MIN), -1);
    EXPECT_EQ(map(INT_MAX), -1);
    return result;
}

} // namespace

TEST(IcuEnumerations, AreMappedAndRefuseOtherValues)
{
    using Values = std::vector<int>;
    EXPECT_EQ(mapAll<VanICU::ICUEStyle>(0, 3, "Unknown UEStyle"), (Values{-1, 0, 1, 2, 3, -1}));
    EXPECT_EQ(mapAll<VanICU::ICUCalendarDateField>(0, 10, "Unknown calendar date field."),
              (Values{-1, 1, 2, 5, 11, 12, 13, 14, 3, 17, 7, 6, -1}));
    EXPECT_EQ(mapAll<VanICU::ICUDayOfWeek>(1, 7, "Unknown day of week."),
              (Values{-1, 1, 2, 3, 4, 5, 6, 7, -1}));
    EXPECT_EQ(mapAll<VanICU::ICUSymbolWidth>(0, 3, "Unknown width type."), (Values{-1, 0, 1, 2, 3, -1}));
    EXPECT_EQ(mapAll<VanICU::ICUSymbolContext>(0, 2, "Unknown context type."), (Values{-1, 0, 1, 2, -1}));
    EXPECT_EQ(mapAll<VanICU::ICUNumberSymbolId>(0, 18, "Unknown symbol id."),
              (Values{-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, -1}));
}

namespace
{

/// A wrapper class as small as can be.
struct Fields
{
    virtual ~Fields() = default;
    virtual int Get(UCalendarDateFields field) const = 0;
    virtual void Require(UErrorCode failure) const = 0;
};

template <class Family>
struct FieldsImpl final : vansys::detail::Wrapper<Fields, icu::Calendar>
{
    using Wrapper::Wrapper;

    int Get(UCalendarDateFields field) const override
    {
        return Checked(Family::CalendarSource, 7,
                       [=](icu::Calendar const &calendar, UErrorCode &status)
                       { return calendar.get(field, status); });
    }

    void Require(UErrorCode failure) const override
    {
        Checked(Family::DecimalFormatSource, 8,
                [=](icu::Calendar const &, UErrorCode &status) { status = failure; });
    }
};

} // namespace

TEST(IcuWrapper, ReportsFailuresAndGoesOn)
{
    using vansys::detail::Wrap;
    using Reports = std::vector<std::string>;
    for (auto const &[version, digits] : {std::pair(4, std::string("44")), std::pair(55, std::string("55"))})
    {
        setIcuVersion(version);
        auto const nothing = Wrap<FieldsImpl>(std::unique_ptr<icu::Calendar>());
        UErrorCode status = U_ZERO_ERROR;
        auto const calendar = Wrap<FieldsImpl>(
            std::unique_ptr<icu::Calendar>(new icu::GregorianCalendar(2024, UCAL_MARCH, 1, status)));
        setIcuVersion(4);

        RecordedAssertions const recorded;
        EXPECT_EQ(calendar->Get(UCAL_MONTH), 2);
        calendar->Require(U_USING_DEFAULT_WARNING);
        EXPECT_EQ(recorded.Take(), Reports{});
        EXPECT_EQ(nothing->Get(UCAL_MONTH), 0);
        calendar->Require(U_PARSE_ERROR);
        EXPECT_EQ(recorded.Take(),
                  (Reports{"vansys/main/icu/Calendar" + digits + ":7: ptr != nullptr",
                           "vansys/main/icu/DecimalFormat" + digits + ":8: U_SUCCESS(status)"}));
    }
    EXPECT_STREQ(VanICU44::Family::DateFormatSource, "vansys/main/icu/DateFormat44");
    EXPECT_STREQ(VanICU55::Family::DateFormatSource, "vansys/main/icu/DateFormat55");
    EXPECT_STREQ(VanICU55::Family::SimpleDateFormatSource, VanICU44::Family::SimpleDateFormatSource);
}

// Failing allocations, those of ICU among them

namespace
{

class IcuAllocationFailure : public testing::Test
{
protected:
    // ICU takes its memory from here on from where allocations can be made to fail. Nothing changes for what
    // it holds already: these are the functions that it uses by itself.
    static void SetUpTestSuite()
    {
        UErrorCode status = U_ZERO_ERROR;
        u_setMemoryFunctions(
            nullptr, [](void const *, std::size_t size) { return std::malloc(size); },
            [](void const *, void *memory, std::size_t size) { return std::realloc(memory, size); },
            [](void const *, void *memory) { std::free(memory); }, &status);
        ASSERT_EQ(status, U_ZERO_ERROR);
    }

    /// What ICU loads once and keeps is there before anything fails.
    static int failEach(std::function<void()> const &operation)
    {
        operation();
        return failEachAllocation([] {}, operation, [] {});
    }
};

/// Calls a factory, and treats a null result as the failure that it stands for. The factory must not throw.
template <class Factory>
auto orThrow(Factory const &factory)
{
    auto const noThrow = [&]() noexcept { return factory(); };
    auto result = noThrow();
    if (!result)
        throw std::bad_alloc();
    return result;
}

std::string const Long(100, 'x');

} // namespace

TEST_F(IcuAllocationFailure, FactoriesReturnNull)
{
    // Longer than what ICU holds inside its object.
    std::string const longName =
        "de_AT@calendar=gregorian;cf=standard;collation=phonebook;colnumeric=yes;colstrength=primary;currency=eur;"
        "hours=h24;measure=metric;numbers=latn;timezone=utc";
    TStringCore const wide(u'x', 100);
    struct
    {
        char const *name;
        std::function<void()> factory;
        int failures;
    } const rows[] = {
        {"locale", [] { orThrow([] { return ICULocale::createInstance("de", "AT"); }); }, 3},
        {"empty text", [] { orThrow([] { return ICUString::createInstance(); }); }, 2},
        {"UTF-8", [] { orThrow([] { return ICUString::createInstance(Long.c_str()); }); }, 3},
        // For this one, ICU asks for less memory when it does not get what it likes.
        {"UTF-16", [&] { orThrow([&] { return ICUString::createInstance(wide.constData()); }); }, 1},
    };
    for (auto const &row : rows)
        EXPECT_GE(failEach(row.factory), row.failures) << row.name;

    // ICU's own copy of a locale does not tell that it failed.
    icu::Locale const original(longName.c_str());
    int const failures = failEach(
        [&]
        {
            using vansys::detail::LocaleAccess;
            auto const locale = orThrow([&] { return LocaleAccess::Wrap<VanICU44::Family>(original); });
            EXPECT_EQ(locale->getName(), longName);
        });
    EXPECT_GE(failures, 4);
}

TEST_F(IcuAllocationFailure, NamedLocalesAreMadeByTheNextCaller)
{
    icu::Locale::getCanada(); // ICU itself does not survive without memory here
    int const failures = failEachAllocation([] {}, [] { ICULocale::getCanada(); }, [] {});
    EXPECT_GE(failures, 3);
    EXPECT_STREQ(ICULocale::getCanada().getName(), "en_CA");
}

TEST_F(IcuAllocationFailure, WritingUtf8LeavesTheResultAsItWas)
{
    TStringCore const text(u'\u20AC', 600); // more bytes than ICU has room for without asking
    auto const string = ICUString::createInstance(text.constData());
    std::string result;
    EXPECT_GE(failEachAllocation([&] { result = "before"; }, [&] { string->toUTF8(result); },
                                 [&] { EXPECT_EQ(result, "before"); }),
              1);
    EXPECT_EQ(result, "before" + text.toStdString());
}

TEST_F(IcuAllocationFailure, LocalConversionsThrowOutOfMemory)
{
    TStringCore const text(Long.c_str());
    EXPECT_GE(failEach([] { TStringCore::fromLocal8Bit("inline"); }), 1) << "of the converter";
    EXPECT_GE(failEach([] { TStringCore::fromLocal8Bit(Long.c_str()); }), 2);
    bool complete = false;
    EXPECT_GE(failEach([&] { (void)text.toLocal8Bit(&complete); }), 4);
    EXPECT_TRUE(complete);
}
