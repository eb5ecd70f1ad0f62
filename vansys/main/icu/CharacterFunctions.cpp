#include "vansys/ICUCharacterFunctions.h"

#include "main/icu/Call.h"

using vansys::detail::Call;
using vansys::detail::FunctionTable;

namespace VanICU
{

signed char t_u_charType(int codePoint)
{
    return Call(&FunctionTable::u_charType, codePoint);
}

signed char t_u_hasBinaryProperty(int codePoint, ICUProperty property)
{
    return Call(&FunctionTable::u_hasBinaryProperty, codePoint, property);
}

signed char t_u_isUAlphabetic(int codePoint)
{
    return Call(&FunctionTable::u_isUAlphabetic, codePoint);
}

signed char t_u_isULowercase(int codePoint)
{
    return Call(&FunctionTable::u_isULowercase, codePoint);
}

signed char t_u_isUUppercase(int codePoint)
{
    return Call(&FunctionTable::u_isUUppercase, codePoint);
}

signed char t_u_isUWhiteSpace(int codePoint)
{
    return Call(&FunctionTable::u_isUWhiteSpace, codePoint);
}

signed char t_u_isWhitespace(int codePoint)
{
    return Call(&FunctionTable::u_isWhitespace, codePoint);
}

signed char t_u_isblank(int codePoint)
{
    return Call(&FunctionTable::u_isblank, codePoint);
}

signed char t_u_isdigit(int codePoint)
{
    return Call(&FunctionTable::u_isdigit, codePoint);
}

signed char t_u_ispunct(int codePoint)
{
    return Call(&FunctionTable::u_ispunct, codePoint);
}

signed char t_u_isxdigit(int codePoint)
{
    return Call(&FunctionTable::u_isxdigit, codePoint);
}

int t_u_tolower(int codePoint)
{
    return Call(&FunctionTable::u_tolower, codePoint);
}

int t_u_toupper(int codePoint)
{
    return Call(&FunctionTable::u_toupper, codePoint);
}

int t_u_foldCase(int codePoint, unsigned int options)
{
    return Call(&FunctionTable::u_foldCase, codePoint, options);
}

} // namespace VanICU
