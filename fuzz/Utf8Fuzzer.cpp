// UTF-8 decoding never fails, what it gives survives a round trip, and it agrees with ICU on what is
// well-formed.

#include "FuzzInput.h"

#include <vansys/ICUFunctions.h>

#include <vector>

using fuzz::Require;

namespace
{

/// None when the bytes are not well-formed.
bool decodeWithIcu(std::string_view bytes, TStringCore &text)
{
    std::vector<TCodeUnit> units(bytes.size() + 1);
    int length = 0;
    VanICU::ICUErrorCode status{};
    VanICU::t_u_strFromUTF8(units.data(), static_cast<int>(units.size()), &length, bytes.data(),
                            static_cast<int>(bytes.size()), &status);
    if (VanICU::ICU_FAILURE(status))
        return false;
    text.assign(units.data(), length);
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    std::string const bytes(reinterpret_cast<char const *>(data), size);

    TStringCore const text = TStringCore::fromStdString(bytes);
    Require(text.length() <= static_cast<int>(size));
    Require(text.constData()[text.length()] == 0);

    std::string const encoded = text.toStdString();
    Require(TStringCore::fromStdString(encoded) == text);
    Require(TStringCore(u"prefix").append(encoded.c_str(), static_cast<int>(encoded.size())).mid(6) == text);

    TStringCore expected;
    if (decodeWithIcu(bytes, expected))
    {
        Require(text == expected);
        Require(encoded == bytes);
    }
    return 0;
}
