// Which hostile names the usual way to join names of unknown origin lets through: to join, to bring into
// normal form, and to see whether that begins with the base. Prints a line for each name, and how many of
// them there are.

#include "path/HostileNames.h"

#include <vansys/TPathCore.h>

#include <boost/filesystem.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>

namespace
{

template <class Path>
bool LetsThrough(std::string const &untrusted)
{
    Path const base("/srv/base");
    Path const joined = (base / untrusted).lexically_normal();
    return std::mismatch(base.begin(), base.end(), joined.begin(), joined.end()).first == base.end();
}

bool IsRefused(TStringCore const &untrusted)
{
    try
    {
        static_cast<void>(TPathCore::SafeJoin(u"/srv/base", untrusted));
        return false;
    }
    catch (TPathCore::Exception const &)
    {
        return true;
    }
}

/// With escapes for what a terminal does not show.
std::string Shown(std::string const &text)
{
    std::string shown;
    for (char const byte : text)
        shown += byte == '\0' ? std::string("\\0") : std::string(1, byte);
    return shown;
}

} // namespace

int main()
{
    int all = 0;
    int refused = 0;
    int throughStd = 0;
    int throughBoost = 0;
    VisitHostileNames(
        [&](char const *reason, TStringCore const &untrusted)
        {
            std::string const bytes = untrusted.toStdString();
            bool const byStd = LetsThrough<std::filesystem::path>(bytes);
            bool const byBoost = LetsThrough<boost::filesystem::path>(bytes);
            ++all;
            refused += IsRefused(untrusted);
            throughStd += byStd;
            throughBoost += byBoost;
            std::printf("%-9s %-9s %-28s %s\n", byStd ? "through" : "refused",
                        byBoost ? "through" : "refused", Shown(bytes).c_str(), reason);
        });
    std::printf("%d names: SafeJoin refuses %d, std::filesystem lets %d through, boost::filesystem %d\n", all,
                refused, throughStd, throughBoost);
    return refused == all ? 0 : 1;
}
