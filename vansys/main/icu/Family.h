/// @file
/// The two families of implementations, and the choice between them.
///
/// What the families have in common is written once, as a template over the family.
#pragma once

#include "main/icu/FunctionTable.h"

#include <atomic>

namespace VanICU44
{

/// The family that is written against the interface of ICU 4.4.
struct Family
{
    static vansys::detail::FunctionTable const Functions;

    // What failed assertions of the wrapper classes name as their source.
    static constexpr char CalendarSource[] = "vansys/main/icu/Calendar44";
    static constexpr char DateFormatSource[] = "vansys/main/icu/DateFormat44";
    static constexpr char DecimalFormatSource[] = "vansys/main/icu/DecimalFormat44";
    static constexpr char SimpleDateFormatSource[] = "vansys/main/icu/SimpleDateFormat44";
};

} // namespace VanICU44

namespace VanICU55
{

/// The family that is written against the interface of ICU 5.5.
struct Family
{
    static vansys::detail::FunctionTable const Functions;

    // What failed assertions of the wrapper classes name as their source.
    static constexpr char CalendarSource[] = "vansys/main/icu/Calendar55";
    static constexpr char DateFormatSource[] = "vansys/main/icu/DateFormat55";
    static constexpr char DecimalFormatSource[] = "vansys/main/icu/DecimalFormat55";
    static constexpr char SimpleDateFormatSource[] = "vansys/main/icu/SimpleDateFormat44"; // as the other one
};

} // namespace VanICU55

namespace vansys::detail
{

/// The number that selects `VanICU44`; every other number selects `VanICU55`.
inline constexpr int VersionOfVanICU44 = 4;

// Relaxed: the selector is set before other threads use the layer; the atomic only keeps a late setter
// harmless.
inline constinit std::atomic<int> g_icuVersion{VersionOfVanICU44};

/// Calls `function` with an object of the selected family's type, and returns what that returns.
template <class Function>
decltype(auto) WithSelectedFamily(Function const &function)
{
    if (g_icuVersion.load(std::memory_order_relaxed) == VersionOfVanICU44)
        return function(VanICU44::Family());
    return function(VanICU55::Family());
}

/// The functions of the selected family.
inline FunctionTable const &SelectedFunctions() noexcept
{
    return WithSelectedFamily([](auto family) -> auto & { return decltype(family)::Functions; });
}

} // namespace vansys::detail
