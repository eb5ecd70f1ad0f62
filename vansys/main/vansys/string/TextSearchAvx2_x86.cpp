// Compiled for processors with AVX2 as a whole. So it must not define anything that the linker could take
// for other files too: all functions but the one that is declared in the header are local to this file.

#include "main/vansys/string/TextSearchAvx2_x86.h"

#include "main/vansys/string/TextSearchVector.h"

namespace vansys::detail
{

TextSearches Avx2TextSearches() noexcept
{
    return SearchesByVector<32>();
}

} // namespace vansys::detail
