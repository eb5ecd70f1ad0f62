// Taking a damaged dump apart ends, reads nothing beyond it, and believes no more than there can be.

#include "FuzzInput.h"

#include "diagnostics/MinidumpReader.h"

#include <string_view>

using fuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    std::string_view const file(reinterpret_cast<char const *>(data), size);
    MinidumpReport const report = ReadMinidump(file);
    Require(report.threads.size() <= size / 48 && report.modules.size() <= size / 108);
    if (!report.fault.empty())
        return 0;
    Require(!report.threads.empty() && !report.modules.empty() && report.memorySize <= size);
    // No part is beyond the first half alone: the directory, or what it points to, is missing there.
    Require(!ReadMinidump(file.substr(0, 31)).fault.empty());
    for (std::size_t at = 0; at < 12; ++at)
    {
        std::string damaged(file);
        damaged[at] = static_cast<char>(~damaged[at]);
        Require(at == 6 || at == 7 || !ReadMinidump(damaged).fault.empty());
    }
    return 0;
}
