/// @file
/// Takes a minidump apart, and finds out what is wrong with it. Shares nothing with what writes dumps.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct MinidumpReport
{
    std::string fault; ///< empty for a dump that is as it should be; else the rest says what was read before
    std::uint32_t processId = 0;
    std::uint32_t exceptionCode = 0;
    std::uint32_t exceptionThread = 0;
    std::size_t memoryParts = 0;
    std::uint64_t memorySize = 0;
    std::vector<std::uint32_t> threads; ///< ids
    std::vector<std::string> modules;   ///< names; others than ASCII characters as `?`
    std::size_t identifiedModules = 0;
};

/// Looks at every offset, size and text. A dump of Linux has to have all that lldb wants; one of Windows may
/// lack what Wine leaves out.
MinidumpReport ReadMinidump(std::string_view file);
