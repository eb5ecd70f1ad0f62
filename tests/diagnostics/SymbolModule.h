/// @file
/// What the module that symbols are looked up in exports.
#pragma once

extern "C"
{
    using SymbolModuleCall = void (*)(void *argument);

    /// The type of `symbol_module_outer`, which calls `call` in a function that is inlined. Its debugging
    /// information says `probe::Outer`; of its two builds, one has `another` in its name.
    using SymbolModuleOuter = void(SymbolModuleCall call, void *argument);
}
