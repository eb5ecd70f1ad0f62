#include "vansys/ICUVersion.h"

#include "main/icu/Family.h"
#include "vansys/detail/CharacterTable.h"

using vansys::detail::g_icuVersion;

void VanICU::setIcuVersion(int version)
{
    g_icuVersion.store(version, std::memory_order_relaxed);
    vansys::detail::CharacterTable::followSelection();
}

int VanICU::getIcuVersion()
{
    return g_icuVersion.load(std::memory_order_relaxed);
}
