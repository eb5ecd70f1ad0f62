/// @file
/// The symbol maps that lie beside the modules of this process.
#pragma once

#include "main/diagnostics/Symbols.h"

#include <cstdint>

namespace vansys::detail
{

/// Looks the address up in the map of the module that it lies in: for `folder\name.dll`, and a program
/// likewise, the file `folder\name.vsym`. Returns whether the function is known; then it and, where known,
/// file and line replace those in `symbol`.
///
/// A map is opened by the first look-up in its module. One that cannot be used is left alone from then on,
/// and `symbol.notice` says so this once: "(symbol map name.vsym ignored: REASON)", where the reason is one
/// of "it is damaged", "it is of another version", "it belongs to another module", and "it cannot be read".
///
/// One thread at a time. Throws `std::bad_alloc`.
bool LookUpInSymbolMap(std::uintptr_t address, Symbol &symbol);

} // namespace vansys::detail
