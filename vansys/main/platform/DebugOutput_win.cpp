#include "main/platform/DebugOutput.h"

#include "main/platform/Windows.h"

namespace vansys::detail
{

void WriteDebugOutput(char const *message) noexcept
{
    OutputDebugStringA(message);
}

} // namespace vansys::detail
