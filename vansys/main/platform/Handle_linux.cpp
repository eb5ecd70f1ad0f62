#include "main/platform/Handle.h"

#include <cerrno>
#include <unistd.h>

namespace vansys::detail
{

bool Handle::IsNone(NativeHandle native) noexcept
{
    return native < 0;
}

void Handle::Close(NativeHandle native) noexcept
{
    int const error = errno;
    // Not repeated when a signal interrupts it: the descriptor is closed by then, and may be another
    // thread's.
    close(native);
    errno = error;
}

} // namespace vansys::detail
