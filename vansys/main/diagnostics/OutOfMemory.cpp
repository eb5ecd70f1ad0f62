#include "main/diagnostics/OutOfMemory.h"

#include <new>

namespace vansys::detail
{

bool FalseIfOutOfMemory()
{
    try
    {
        throw;
    }
    catch (std::bad_alloc const &)
    {
        return false;
    }
}

} // namespace vansys::detail
