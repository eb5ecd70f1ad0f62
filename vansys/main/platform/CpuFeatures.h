/// @file
/// What the processor can do beyond the instructions that every processor of its architecture has.
#pragma once

namespace vansys::detail
{

/// Each flag says that code may use the instructions; all are false on other architectures.
struct CpuFeatures
{
    bool sha = false;  ///< SHA-1 and SHA-256 instructions of x86, with SSE4.1 and SSSE3.
    bool avx2 = false; ///< AVX2 of x86, with both sets of bit manipulation instructions, BMI1 and BMI2.
};

/// Asks the processor, each time anew: keep the answer.
CpuFeatures DetectCpuFeatures() noexcept;

} // namespace vansys::detail
