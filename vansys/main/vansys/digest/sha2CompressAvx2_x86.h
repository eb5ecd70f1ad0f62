/// @file
/// Part of the x86 code behind `FastestSha2Compressions`.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vansys::detail
{

/// Compression of SHA-384 and SHA-512 for processors with AVX2, BMI1 and BMI2.
void CompressSha512Avx2(std::uint64_t *state, unsigned char const *blocks, std::size_t blockCount);

} // namespace vansys::detail
