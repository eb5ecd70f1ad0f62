#include "main/vansys/path/PathAccess.h"
#include "main/vansys/text/CaseFolding.h"
#include "vansys/THash.h"
#include "vansys/TPathCoreOperators.h"

#include <algorithm>
#include <cstdint>

using namespace vansys::detail;

std::size_t std::hash<TPathCore>::operator()(TPathCore const &path) const noexcept
{
    constexpr int PieceLength = 128;

    // Folds a piece at a time, as most paths are one, and no memory has to be found for any.
    TStringCore const &text = PathAccess::Text(path);
    TCodeUnit piece[PieceLength];
    std::uint64_t result = 0;
    for (int begin = 0; begin < text.length(); begin += PieceLength)
    {
        int const length = std::min(text.length() - begin, PieceLength);
        TCodeUnit const *const units = text.constData() + begin;
        std::transform(units, units + length, piece, FoldUnit);
        result = THash64(piece, static_cast<unsigned int>(length) * sizeof *piece, result);
    }
    return static_cast<std::size_t>(result);
}
