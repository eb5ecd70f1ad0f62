#include "SymbolModule.h"

namespace VANSYS_PROBE
{

[[gnu::always_inline]] inline void Inner(SymbolModuleCall call, void *argument)
{
    call(argument);
    asm volatile(""); // or the call might become a jump, and leave no frame
}

[[gnu::noinline]] void Outer(SymbolModuleCall call, void *argument);

void Outer(SymbolModuleCall call, void *argument)
{
    char volatile room[VANSYS_ROOM]; // what the two builds differ in
    room[0] = 0;
    Inner(call, argument);
}

} // namespace VANSYS_PROBE

extern "C" [[gnu::visibility("default")]] void symbol_module_outer(SymbolModuleCall call, void *argument)
{
    VANSYS_PROBE::Outer(call, argument);
    asm volatile("");
}
