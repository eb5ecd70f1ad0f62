// The same by Boost.Stacktrace. Loads the library, too, so that both begin alike.

#include "vansys/TCapturedStack.h"

#include <boost/stacktrace.hpp>
#include <string>

int main()
{
    TCapturedStack const loaded;
    return !loaded.IsEmpty() ||
           to_string(boost::stacktrace::stacktrace()).find("FirstText") == std::string::npos;
}
