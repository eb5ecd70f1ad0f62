#include "main/diagnostics/DebugFile_linux.h"
#include "main/diagnostics/LoadedModules_linux.h"
#include "main/diagnostics/SymbolCache.h"
#include "main/diagnostics/Symbols.h"
#include "main/diagnostics/UndecoratedName.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <dlfcn.h>

namespace vansys::detail
{

namespace
{

/// What is known about the modules that are loaded. Used by one thread at a time.
class SymbolTable
{
public:
    std::uint64_t Generation() const noexcept { return m_generation; }

    /// Takes the modules that are loaded now. Keeps what was read of those that still are.
    void Update(LoadedModules current)
    {
        std::vector<std::unique_ptr<Module>> modules;
        modules.reserve(current.modules.size());
        for (LoadedModule &module : current.modules)
        {
            auto const known =
                std::find_if(m_modules.begin(), m_modules.end(),
                             [&module](auto const &each) { return each && each->loaded == module; });
            if (known != m_modules.end())
                modules.push_back(std::move(*known));
            else
                modules.push_back(std::make_unique<Module>(std::move(module)));
        }
        for (auto const &module : modules)
            if (module->loaded.isProgram)
                m_programBase = module->loaded.base;
        m_cache.Clear();
        m_modules = std::move(modules);
        m_generation = current.generation;
    }

    /// The symbol of an address that was looked up before; null when it was not, or not lately.
    Symbol const *FindKnown(std::uintptr_t address) { return m_cache.Find(address); }

    /// Completes the symbol as far as it can. Returns whether the address is in the program itself.
    bool LookUp(std::uintptr_t address, Symbol &symbol)
    {
        if (Symbol const *const known = FindKnown(address))
        {
            symbol = *known;
            return symbol.moduleBase == m_programBase;
        }
        for (auto const &module : m_modules)
        {
            if (!module->loaded.Contains(address))
                continue;
            if (LookUpIn(*module, address, symbol))
                m_cache.Insert(address, symbol);
            return module->loaded.isProgram;
        }
        return false;
    }

private:
    struct Module
    {
        explicit Module(LoadedModule module) noexcept : loaded(std::move(module)) {}

        LoadedModule loaded;
        DebugFile file;
    };

    /// Whether all that can be known was found.
    static bool LookUpIn(Module &module, std::uintptr_t address, Symbol &symbol)
    {
        std::string const &path = module.loaded.path;
        symbol.imagePath = path;
        symbol.module = path.substr(path.rfind('/') + 1);
        symbol.moduleBase = module.loaded.base;
        DebugFile::Record record;
        if (!module.file.LookUp(module.loaded.File(), address, record))
            return false;
        if (record.file)
        {
            symbol.file = record.file;
            symbol.line = record.line;
        }
        if (record.function)
        {
            symbol.fullFunction = Undecorate(record.function);
            symbol.function = NameOnly(symbol.fullFunction);
        }
        return true;
    }

    std::vector<std::unique_ptr<Module>> m_modules;
    SymbolCache m_cache;
    std::uint64_t m_generation = 0;
    std::uintptr_t m_programBase = 0;
};

/// Never destroyed: threads that outlive the statics may still look symbols up.
struct SharedTable
{
    std::mutex mutex;
    SymbolTable table;
};

SharedTable &Shared()
{
    static SharedTable *const shared = new SharedTable;
    return *shared;
}

/// The table, with the modules that are loaded now, and the mutex that is held for it.
class LockedTable
{
public:
    LockedTable() : m_shared(Shared())
    {
        // The dynamic linker is asked without the mutex, as somebody who holds a lock of the linker may wait
        // for it.
        std::uint64_t const generation = ModuleGeneration();
        m_lock = std::unique_lock(m_shared.mutex);
        if (m_shared.table.Generation() == generation)
            return;
        m_lock.unlock();
        LoadedModules modules = ListModules();
        m_lock.lock();
        m_shared.table.Update(std::move(modules));
    }

    SymbolTable *operator->() noexcept { return &m_shared.table; }

private:
    SharedTable &m_shared;
    std::unique_lock<std::mutex> m_lock;
};

struct CloseModule
{
    void operator()(void *module) const noexcept { dlclose(module); }
};

/// What the dynamic linker itself knows: functions that are exported.
void AskDynamicLinker(std::uintptr_t address, bool isInProgram, Symbol &symbol)
{
    // Its answer points into the module, which is therefore held.
    std::unique_ptr<void, CloseModule> const module(
        dlopen(isInProgram ? nullptr : symbol.imagePath.c_str(), RTLD_LAZY | RTLD_NOLOAD));
    Dl_info info;
    if (module && dladdr(std::bit_cast<void const *>(address), &info) != 0 && info.dli_sname)
    {
        symbol.fullFunction = Undecorate(info.dli_sname);
        symbol.function = NameOnly(symbol.fullFunction);
    }
}

} // namespace

Symbol LookUpSymbol(std::uintptr_t address) noexcept
{
    Symbol symbol;
    try
    {
        bool const isInProgram = LockedTable()->LookUp(address, symbol);
        if (symbol.function.empty() && !symbol.imagePath.empty())
            AskDynamicLinker(address, isInProgram, symbol);
    }
    catch (std::bad_alloc const &)
    {
        // What was found until then is the answer.
    }
    return symbol;
}

void LookUpSymbols(std::span<std::uintptr_t const> addresses,
                   std::function<void(std::size_t index, Symbol const &symbol)> const &take)
{
    for (std::size_t i = 0; i < addresses.size(); ++i)
    {
        {
            LockedTable table;
            for (; i < addresses.size(); ++i)
            {
                Symbol const *const known = table->FindKnown(addresses[i]);
                if (!known || known->function.empty())
                    break;
                take(i, *known);
            }
        }
        if (i < addresses.size())
            take(i, LookUpSymbol(addresses[i]));
    }
}

} // namespace vansys::detail
