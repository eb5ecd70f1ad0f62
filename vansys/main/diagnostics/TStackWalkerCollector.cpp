#include "vansys/TStackWalkerCollector.h"

#include "main/diagnostics/Frames.h"

TStackWalkerCollector::TStackWalkerCollector() : TStackWalker(nullptr, vansys::detail::CurrentProcessId()) {}

TStackWalkerCollector::TStackWalkerCollector(TStackWalkerCollector const &) = default;
TStackWalkerCollector::TStackWalkerCollector(TStackWalkerCollector &&) noexcept = default;
TStackWalkerCollector &TStackWalkerCollector::operator=(TStackWalkerCollector const &) = default;
TStackWalkerCollector &TStackWalkerCollector::operator=(TStackWalkerCollector &&) noexcept = default;
TStackWalkerCollector::~TStackWalkerCollector() = default;

void TStackWalkerCollector::OnOutput(char const *line)
{
    m_lines.emplace_back(line);
}
