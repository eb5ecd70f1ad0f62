#include "vansys/TSemaphore.h"

#include "main/synchronize/SemaphoreFailure.h"
#include "vansys/TFormatStringCore.h"
#include "vansys/VantrelException.h"

TSemaphore::~TSemaphore() = default;

void vansys::detail::ThrowSemaphoreFailure(char const *format, std::uint32_t error)
{
    throw VantrelException(TFormatStringCore(format).arg(error));
}
