/// @file
/// Runs tests of the ICU layer with each family, and shortens what all of them do.
#pragma once

#include "vansys/ICUFunctions.h"
#include "vansys/ICUVersion.h"
#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

/// Each test runs with both families selected in turn.
class ICUFamilyTest : public testing::TestWithParam<int>
{
protected:
    ICUFamilyTest() { VanICU::setIcuVersion(GetParam()); }
    ~ICUFamilyTest() override { VanICU::setIcuVersion(4); }

    /// Passed to every call that takes a status.
    VanICU::ICUErrorCode m_status = VanICU::U_ZERO_ERROR;
};

#define VANSYS_WITH_BOTH_FAMILIES(suite)                                                                     \
    INSTANTIATE_TEST_SUITE_P(Family, suite, testing::Values(4, 55),                                          \
                             [](auto const &family) { return "VanICU" + std::to_string(family.param); })

/// Owns a handle. The function that closes it may return anything.
template <auto Close>
struct Closer
{
    template <class Handle>
    void operator()(Handle *handle) const
    {
        (void)Close(handle);
    }
};

template <class Handle, auto Close>
using Owned = std::unique_ptr<Handle, Closer<Close>>;

/// The result of a function that fills a buffer: `fill(buffer, capacity)` returns the length.
template <class Character = TCodeUnit, class Fill>
std::basic_string<Character> Filled(Fill const &fill)
{
    Character buffer[200] = {};
    int const length = fill(buffer, 200);
    EXPECT_LT(length, 200);
    return std::basic_string<Character>(buffer);
}

template <class Fill>
TStringCore FilledText(Fill const &fill)
{
    return TStringCore(Filled(fill).c_str());
}
