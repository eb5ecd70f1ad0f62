/// @file
/// Which family of implementations the ICU layer uses.
#pragma once

#include "vansys/Export.h"

/// The library's own layer over ICU (International Components for Unicode). Hosts need no ICU header.
namespace VanICU
{

/// Selects the family that the functions and factories of the layer use from now on: 4 selects `VanICU44`,
/// any other value `VanICU55`. The value is stored as it is. Objects keep the family that they were created
/// with.
///
/// To be called once at start-up, before other threads use the layer. Calling it later is safe in itself, but
/// calls that other threads make at that moment may go to either family.
VANSYS_API void setIcuVersion(int version);

/// The value last given to `setIcuVersion`; 4 at first. May be called on any thread.
VANSYS_API int getIcuVersion();

} // namespace VanICU
