#include "main/vansys/digest/sha2Portable.h"

#include "main/vansys/digest/sha2Compress.h"

namespace vansys::detail
{

Sha2Compressions PortableSha2Compressions() noexcept
{
    return {Sha2Portable::CompressSha1, Sha2Portable::CompressSha256, Sha2Portable::CompressSha512};
}

} // namespace vansys::detail
