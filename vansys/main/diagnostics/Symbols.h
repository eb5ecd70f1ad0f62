/// @file
/// Symbols: what the debugging information and the symbol tables say about an address of this process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace vansys::detail
{

/// What lies at an address. What is not known is empty, or 0.
struct Symbol
{
    std::string function;     ///< the name with its scopes, undecorated: `core::Parse`
    std::string fullFunction; ///< with parameters and, where the decorated name has it, the result
    std::string file;         ///< of the source, as the debugging information names it
    unsigned line = 0;
    std::string module;    ///< the name of the module's file, without the folder
    std::string imagePath; ///< the module's file
    std::uintptr_t moduleBase = 0;
    /// What is to be said of the look-up itself, in a line of its own before that of the frame. Given once.
    std::string notice;
};

/// Looks up what lies at `address` in the modules that are loaded now. Of a return address, the call is what
/// lies one byte before it, and that is what the caller looks up. Where functions were inlined into one
/// another, the function is the outermost one, and the line that in the innermost.
///
/// Any thread may call it at any time; look-ups take turns. The first one in a module reads the module's
/// files, the first one of an address searches what was read, and further ones find it in a cache.
///
/// Never fails: what there is no memory or no file descriptor for stays unknown, and is looked for again the
/// next time.
Symbol LookUpSymbol(std::uintptr_t address) noexcept;

/// The same for many addresses, which is faster: calls `take` for each, in order. It may be called under the
/// lock of the look-ups, and must not look symbols up itself. What it throws passes through.
void LookUpSymbols(std::span<std::uintptr_t const> addresses,
                   std::function<void(std::size_t index, Symbol const &symbol)> const &take);

} // namespace vansys::detail
