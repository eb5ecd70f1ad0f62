#include "main/platform/CpuFeatures.h"

namespace vansys::detail
{

CpuFeatures DetectCpuFeatures() noexcept
{
    return {};
}

} // namespace vansys::detail
