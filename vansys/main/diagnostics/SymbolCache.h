/// @file
/// SymbolCache: what look-ups have found, by address.
#pragma once

#include "main/diagnostics/Symbols.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace vansys::detail
{

/// Symbols by address. Bounded: what was not asked for while `HalfSize` others were is dropped. For one
/// thread at a time. `Find` and `Insert` throw `std::bad_alloc`.
class SymbolCache
{
public:
    Symbol const *Find(std::uintptr_t address)
    {
        auto const recent = m_recent.find(address);
        if (recent != m_recent.end())
            return &recent->second;
        Symbols::node_type older = m_older.extract(address);
        if (older.empty())
            return nullptr;
        MakeRoom();
        return &m_recent.insert(std::move(older)).position->second;
    }

    void Insert(std::uintptr_t address, Symbol const &symbol)
    {
        MakeRoom();
        m_recent.emplace(address, symbol);
    }

    void Clear() noexcept
    {
        m_recent.clear();
        m_older.clear();
    }

private:
    using Symbols = std::unordered_map<std::uintptr_t, Symbol>;

    static constexpr std::size_t HalfSize = 4096;

    void MakeRoom() noexcept
    {
        if (m_recent.size() < HalfSize)
            return;
        m_older.clear();
        m_older.swap(m_recent);
    }

    Symbols m_recent;
    Symbols m_older;
};

} // namespace vansys::detail
