#include "main/icu/Family.h"

using vansys::detail::FunctionTable;

namespace
{

/// The functions of the ICU release that the library is linked with.
constexpr FunctionTable LinkedFunctions = {
#define VANSYS_ENTRY(name) &::name,
    VANSYS_ICU_FUNCTIONS(VANSYS_ENTRY)
#undef VANSYS_ENTRY
};

} // namespace

// There is one ICU, so both families call the same functions.
constinit FunctionTable const VanICU44::Family::Functions = LinkedFunctions;
constinit FunctionTable const VanICU55::Family::Functions = LinkedFunctions;
