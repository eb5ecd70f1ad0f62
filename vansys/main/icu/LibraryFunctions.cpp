#include "vansys/ICUFunctions.h"

#include "main/icu/Call.h"

using vansys::detail::Call;
using vansys::detail::FunctionTable;

namespace VanICU
{

char const *t_u_errorName(ICUErrorCode code)
{
    return Call(&FunctionTable::u_errorName, code);
}

void t_u_cleanup()
{
    Call(&FunctionTable::u_cleanup);
}

} // namespace VanICU
