// Linux knows one name of each file, and cannot tell which of them is long or short.

#include "main/vansys/path/NativeBytes.h"
#include "main/vansys/path/NativeName.h"

#include <cerrno>
#include <string>
#include <string_view>

#include <sys/stat.h>

namespace vansys::detail
{

NameAnswer AskNativeName(NameForm /*form*/, TStringCore const &native, TStringCore &text)
{
    std::u16string_view name = native;
    if (constexpr std::u16string_view prefix = u"\\\\?\\"; name.substr(0, prefix.size()) == prefix)
        name.remove_prefix(prefix.size());
    std::string const bytes = EncodeNativeBytes(TStringCore(name));
    struct stat status; // NOLINT(cppcoreguidelines-pro-type-member-init): the system writes it
    if (lstat(bytes.c_str(), &status) != 0)
        return errno == ENOENT || errno == ENOTDIR ? NameAnswer::NoSuchFile : NameAnswer::Failed;
    text = native;
    return NameAnswer::Known;
}

} // namespace vansys::detail
