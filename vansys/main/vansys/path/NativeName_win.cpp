#include "main/vansys/path/NativeName.h"

#include "main/platform/Windows.h"
#include "main/vansys/string/StringAccess.h"

#include <limits>
#include <utility>

namespace vansys::detail
{

NameAnswer AskNativeName(NameForm form, TStringCore const &native, TStringCore &text)
{
    auto *const ask = form == NameForm::Long ? GetLongPathNameW : GetShortPathNameW;
    DWORD const needed = ask(native.constData(), nullptr, 0);
    if (needed == 0)
    {
        DWORD const error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ? NameAnswer::NoSuchFile
                                                                              : NameAnswer::Failed;
    }
    if (needed > static_cast<DWORD>(std::numeric_limits<int>::max()))
        return NameAnswer::Failed;
    StringStorage name;
    TCodeUnit *const units = name.setLengthForOverwrite(static_cast<int>(needed));
    DWORD const length = ask(native.constData(), units, needed);
    if (length == 0 || length >= needed) // it has got longer since
        return NameAnswer::Failed;
    name.shorten(static_cast<int>(length));
    text = StringAccess::Adopt(std::move(name));
    return NameAnswer::Known;
}

} // namespace vansys::detail
