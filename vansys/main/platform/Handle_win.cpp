#include "main/platform/Handle.h"

#include "main/platform/Windows.h"

#include <type_traits>

namespace vansys::detail
{

static_assert(std::is_same_v<NativeHandle, HANDLE>);

bool Handle::IsNone(NativeHandle native) noexcept
{
    return native == nullptr || native == INVALID_HANDLE_VALUE;
}

void Handle::Close(NativeHandle native) noexcept
{
    DWORD const error = GetLastError();
    CloseHandle(native);
    SetLastError(error);
}

} // namespace vansys::detail
