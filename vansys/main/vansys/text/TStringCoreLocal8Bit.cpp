// Conversions of TStringCore from and to the platform's default code page.

#include "vansys/ICUConverterFunctions.h"
#include "vansys/ICUFunctions.h"
#include "vansys/TStringCore.h"

#include "main/vansys/string/Utf.h"

#include <cstring>
#include <limits>
#include <memory>
#include <string_view>

using namespace VanICU;

namespace
{

struct CloseConverter
{
    void operator()(ICUConverter *converter) const { t_ucnv_close(converter); }
};

using Converter = std::unique_ptr<ICUConverter, CloseConverter>;

/// Throws for a failure.
void Check(ICUErrorCode status)
{
    if (status == U_MEMORY_ALLOCATION_ERROR)
        throw TStringCore::Exception("Out of memory");
    if (ICU_FAILURE(status))
        throw TStringCore::Exception(TStringCore("Conversion by the local code page failed: ") +=
                                     t_u_errorName(status));
}

Converter OpenDefaultConverter()
{
    ICUErrorCode status = U_ZERO_ERROR;
    Converter converter(t_ucnv_open(nullptr, &status));
    Check(status);
    return converter;
}

/// Whether these bytes are U+001A, and not rejected ones: some code pages put that character, not U+FFFD, in
/// the place of a single byte.
bool StandForU001A(ICUConverter *converter, std::string_view bytes)
{
    TCodeUnit const unit = 0x1A;
    char buffer[8];
    ICUErrorCode status = U_ZERO_ERROR;
    int const length = t_ucnv_fromUChars(converter, buffer, sizeof buffer, &unit, 1, &status);
    return ICU_SUCCESS(status) && bytes == std::string_view(buffer, static_cast<std::size_t>(length));
}

} // namespace

TStringCore TStringCore::fromLocal8Bit(char const *bytes, int count)
{
    TStringCore result;
    if (!bytes || count == 0)
        return result;
    char const *const end = bytes + (count < 0 ? std::strlen(bytes) : static_cast<std::size_t>(count));
    Converter const converter = OpenDefaultConverter();
    for (;;)
    {
        char const *const start = bytes;
        ICUErrorCode status = U_ZERO_ERROR;
        int codePoint = t_ucnv_getNextUChar(converter.get(), &bytes, end, &status);
        if (status == U_INDEX_OUTOFBOUNDS_ERROR)
            return result;
        if (status == U_MEMORY_ALLOCATION_ERROR)
            Check(status);
        if (ICU_FAILURE(status))
        {
            codePoint = vansys::detail::ReplacementCharacter;
            // A converter that takes nothing would be asked about the same byte for ever.
            if (bytes == start)
                ++bytes;
        }
        else if (codePoint == 0x1A &&
                 !StandForU001A(converter.get(),
                                std::string_view(start, static_cast<std::size_t>(bytes - start))))
            codePoint = vansys::detail::ReplacementCharacter;

        TCodeUnit units[2];
        TCodeUnit const *const unitsEnd =
            vansys::detail::PutCodePoint(static_cast<std::uint32_t>(codePoint), units);
        result.append(units, static_cast<int>(unitsEnd - units));
    }
}

std::string TStringCore::toLocal8Bit(bool *complete) const
{
    std::string bytes;
    if (!isEmpty())
    {
        // Four bytes at most for a unit: with this limit, the number of bytes that an `int` cannot hold is
        // negative, never a smaller one.
        int needed = length() <= std::numeric_limits<int>::max() / 2 ? length() : -1;
        Converter const converter = OpenDefaultConverter();
        ICUErrorCode status = U_BUFFER_OVERFLOW_ERROR;
        while (status == U_BUFFER_OVERFLOW_ERROR)
        {
            if (needed < 0)
                throw Exception("Allocation size less than zero; probable overflow");
            bytes.resize(static_cast<std::size_t>(needed));
            status = U_ZERO_ERROR;
            needed = t_ucnv_fromUChars(converter.get(), bytes.data(), needed, constData(), length(), &status);
        }
        Check(status);
        bytes.resize(static_cast<std::size_t>(needed));
    }
    if (complete)
        *complete = fromLocal8Bit(bytes.data(), static_cast<int>(bytes.size())) == *this;
    return bytes;
}
