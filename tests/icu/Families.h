/// @file
/// Runs tests of the ICU layer with each family, and shortens what all of them do.
#pragma once

#include "vansys/ICUFunctions.h"
#include "vansys/ICUVersion.h"
#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Each test runs with both families selected in turn, and ends without a failure in `m_status`.
class ICUFamilyTest : public testing::TestWithParam<int>
{
protected:
    ICUFamilyTest() { VanICU::setIcuVersion(GetParam()); }

    ~ICUFamilyTest() override
    {
        EXPECT_TRUE(ICU_SUCCESS(m_status)) << VanICU::t_u_errorName(m_status);
        VanICU::setIcuVersion(4);
    }

    /// What a function fills a buffer with: it takes arguments, a buffer, its capacity and a status, and
    /// returns the length.
    template <class Unit = TCodeUnit, class Function, class... Arguments>
    TStringCore Filled(Function const &function, Arguments const &...arguments)
    {
        return Mapped<Unit>([&](Unit *buffer, int capacity, VanICU::ICUErrorCode *status)
                            { return function(arguments..., buffer, capacity, status); });
    }

    /// The same of a function that takes the buffer and the capacity first.
    template <class Unit = TCodeUnit, class Function, class... Arguments>
    TStringCore Mapped(Function const &function, Arguments const &...arguments)
    {
        Unit buffer[200] = {};
        int const length = function(buffer, 200, arguments..., &m_status);
        EXPECT_EQ(static_cast<int>(std::char_traits<Unit>::length(buffer)), length);
        return TStringCore(buffer);
    }

    /// The status so far. The next one is that of what follows.
    VanICU::ICUErrorCode TakeStatus() { return std::exchange(m_status, VanICU::U_ZERO_ERROR); }

    /// Passed to every call that takes a status.
    VanICU::ICUErrorCode m_status = VanICU::U_ZERO_ERROR;
};

/// Names the suite of a file.
#define VANSYS_FAMILY_TEST(suite)                                                                            \
    using suite = ICUFamilyTest;                                                                             \
    INSTANTIATE_TEST_SUITE_P(Family, suite, testing::Values(4, 55),                                          \
                             [](auto const &family) { return "VanICU" + std::to_string(family.param); })

/// Owns a handle. The function that closes it may return anything.
template <auto Close>
struct Closer
{
    void operator()(auto *handle) const { (void)Close(handle); }
};

template <class Handle, auto Close>
using Owned = std::unique_ptr<Handle, Closer<Close>>;
