#include "Rows.h"

namespace bench
{

namespace
{

constexpr char Separator = '|';

} // namespace

std::string CaseName(Row const &row, std::string const &peer)
{
    return row.operation + Separator + peer;
}

std::pair<std::string, std::string> SplitCaseName(std::string const &name)
{
    std::size_t const separator = name.rfind(Separator);
    return {name.substr(0, separator), name.substr(separator + 1)};
}

} // namespace bench
