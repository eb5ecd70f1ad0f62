#include "main/platform/CpuFeatures.h"

#include <cpuid.h>

namespace vansys::detail
{

namespace
{

// Bit of the feature word, as the processor manuals number it.
constexpr unsigned int Leaf7EbxSha = 1u << 29;

/// Asked for by hand, as not all compilers know the instructions by name.
bool HasShaInstructions() noexcept
{
    unsigned int eax = 0;
    unsigned int ebx = 0;
    unsigned int ecx = 0;
    unsigned int edx = 0;
    return __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) && (ebx & Leaf7EbxSha) != 0;
}

} // namespace

CpuFeatures DetectCpuFeatures() noexcept
{
    __builtin_cpu_init(); // the compiler's run-time library may not have done so when constructors run

    CpuFeatures features;
    features.sha =
        HasShaInstructions() && __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("sse4.1");
    // The compiler's answer includes that the operating system saves the wide registers.
    features.avx2 =
        __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    return features;
}

} // namespace vansys::detail
