// Compiled for processors with AVX2 as a whole. So it must not define anything that the linker could take
// for other files too: all functions but the one that is declared in the header are local to this file.

#include "main/vansys/string/TextSearchAvx2_x86.h"

#include "main/vansys/string/TextSearchVector_x86.h"

#include <immintrin.h>

namespace vansys::detail
{

namespace
{

class Avx2Vector
{
public:
    static constexpr int Units = 16;
    using Mask = std::uint32_t;
    using Half = Sse2Vector;

    explicit Avx2Vector(TCodeUnit unit) noexcept : m_units(_mm256_set1_epi16(static_cast<short>(unit))) {}

    Avx2Vector equal(TCodeUnit const *text) const noexcept
    {
        auto const *const from = reinterpret_cast<__m256i const *>(text);
        return Avx2Vector(_mm256_cmpeq_epi16(m_units, _mm256_loadu_si256(from)));
    }

    Mask mask() const noexcept { return static_cast<Mask>(_mm256_movemask_epi8(m_units)); }

    friend Avx2Vector operator&(Avx2Vector a, Avx2Vector b) noexcept
    {
        return Avx2Vector(_mm256_and_si256(a.m_units, b.m_units));
    }

    friend Avx2Vector operator|(Avx2Vector a, Avx2Vector b) noexcept
    {
        return Avx2Vector(_mm256_or_si256(a.m_units, b.m_units));
    }

private:
    explicit Avx2Vector(__m256i units) noexcept : m_units(units) {}

    __m256i m_units;
};

} // namespace

TextSearches Avx2TextSearches() noexcept
{
    return SearchesByVector<Avx2Vector>();
}

} // namespace vansys::detail
