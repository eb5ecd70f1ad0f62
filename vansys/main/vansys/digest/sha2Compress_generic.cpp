#include "main/vansys/digest/sha2Compress.h"

namespace vansys::detail
{

Sha2Compressions FastestSha2Compressions(CpuFeatures) noexcept
{
    return PortableSha2Compressions();
}

} // namespace vansys::detail
