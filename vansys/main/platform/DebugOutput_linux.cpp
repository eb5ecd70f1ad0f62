#include "main/platform/DebugOutput.h"

#include <cstring>
#include <sys/uio.h>
#include <unistd.h>

namespace vansys::detail
{

void WriteDebugOutput(char const *message) noexcept
{
    // One call for text and line end, so that lines of several threads stay whole. Nobody is left to tell
    // when it fails.
    char lineEnd[] = "\n";
    iovec parts[] = {{const_cast<char *>(message), std::strlen(message)}, {lineEnd, 1}};
    [[maybe_unused]] ssize_t const written = writev(STDERR_FILENO, parts, 2);
}

} // namespace vansys::detail
