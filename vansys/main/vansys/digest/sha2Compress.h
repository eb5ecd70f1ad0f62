/// @file
/// The choice between the compression functions of SHA-1 and SHA-2.
#pragma once

#include "main/platform/CpuFeatures.h"

#include <cstddef>
#include <cstdint>

namespace vansys::detail
{

/// Compresses `blockCount` whole blocks, of any alignment, into the eight chaining words at `state` (SHA-1:
/// five). Takes many blocks at a time, so that the chaining words can stay in registers between them.
template <class Word>
using Sha2Compression = void (*)(Word *state, unsigned char const *blocks, std::size_t blockCount);

struct Sha2Compressions
{
    Sha2Compression<std::uint32_t> sha1;
    Sha2Compression<std::uint32_t> sha256; ///< SHA-224 too.
    Sha2Compression<std::uint64_t> sha512; ///< SHA-384 too.
};

/// Those that run on every processor.
Sha2Compressions PortableSha2Compressions() noexcept;

/// The fastest that a processor with `features` can run.
Sha2Compressions FastestSha2Compressions(CpuFeatures features) noexcept;

} // namespace vansys::detail
