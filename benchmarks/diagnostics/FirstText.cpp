// A process that captures its stack, makes text of it and ends.

#include "vansys/TCapturedStack.h"

int main()
{
    return TCapturedStack::Capture().Text().find("FirstText.cpp") == std::string::npos;
}
