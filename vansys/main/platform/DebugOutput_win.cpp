#include "platform/DebugOutput.h"

#include "platform/Windows.h"

namespace vansys::detail
{

void WriteDebugOutput(char const *message) noexcept
{
    OutputDebugStringA(message);
}

} // namespace vansys::detail
