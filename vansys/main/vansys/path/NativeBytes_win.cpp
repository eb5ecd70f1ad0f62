#include "main/vansys/path/NativeBytes.h"

#include "main/vansys/path/PathText.h"

#include <cstdint>

namespace vansys::detail
{

TStringCore DecodeNativeBytes(std::string_view bytes)
{
    int const count = StringStorage::checkedLength(static_cast<std::int64_t>(bytes.size()));
    // The decoder looks at the byte behind, which is not the caller's to have.
    TStringCore text = TStringCore::fromStdString(std::string(bytes.data(), static_cast<std::size_t>(count)));
    return text.replace(NativeSeparator, Separator);
}

std::string EncodeNativeBytes(TStringCore const &text)
{
    return TextForHost(text).toStdString();
}

TStringCore TextForHost(TStringCore const &text)
{
    TStringCore result = text;
    return result.replace(Separator, NativeSeparator);
}

} // namespace vansys::detail
