#include "vansys/TStackWalkerCollector.h"

TStackWalkerCollector::TStackWalkerCollector() : TStackWalker(reinterpret_cast<TProcessHandle>(-1), 0) {}

TStackWalkerCollector::TStackWalkerCollector(TStackWalkerCollector const &) = default;
TStackWalkerCollector::TStackWalkerCollector(TStackWalkerCollector &&) = default;
TStackWalkerCollector &TStackWalkerCollector::operator=(TStackWalkerCollector const &) = default;
TStackWalkerCollector &TStackWalkerCollector::operator=(TStackWalkerCollector &&) = default;
TStackWalkerCollector::~TStackWalkerCollector() = default;

void TStackWalkerCollector::OnOutput(char const *line)
{
    m_lines.emplace_back(line);
}
