#include "vansys/TStackWalkerBase.h"

#include <atomic>

namespace
{

std::atomic<bool> g_isActive{false};

} // namespace

TStackWalkerBase::TStackWalkerBase() noexcept = default;
TStackWalkerBase::TStackWalkerBase(TStackWalkerBase const &) noexcept = default;
TStackWalkerBase::TStackWalkerBase(TStackWalkerBase &&) noexcept = default;
TStackWalkerBase &TStackWalkerBase::operator=(TStackWalkerBase const &) noexcept = default;
TStackWalkerBase &TStackWalkerBase::operator=(TStackWalkerBase &&) noexcept = default;
TStackWalkerBase::~TStackWalkerBase() = default;

bool TStackWalkerBase::GenerateCallstack()
{
    return false;
}

bool TStackWalkerBase::GenerateCallstacksForAllThreads()
{
    return false;
}

void TStackWalkerBase::OnOutput(char const *) {}

bool TStackWalkerBase::InitSym(bool active) noexcept
{
    g_isActive.store(active, std::memory_order_relaxed);
    return active;
}

bool TStackWalkerBase::IsActive() noexcept
{
    return g_isActive.load(std::memory_order_relaxed);
}
