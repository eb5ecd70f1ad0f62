#include "main/diagnostics/CaptureStack.h"
#include "main/diagnostics/Symbols.h"

#include "SymbolModule.h"
#include "support/FailingAllocations.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <link.h>
#include <sys/resource.h>

using namespace vansys::detail;

namespace
{

/// A module that is loaded, and the address of a call in it.
class Module
{
public:
    explicit Module(std::string const &path) : m_handle(dlopen(path.c_str(), RTLD_NOW))
    {
        if (!m_handle)
            throw std::runtime_error(dlerror());
        auto const outer = reinterpret_cast<SymbolModuleOuter *>(dlsym(m_handle, "symbol_module_outer"));
        outer(
            [](void *argument)
            {
                CaptureStack(static_cast<std::uintptr_t *>(argument), 2, 1);
                asm volatile(""); // or it would be a jump, and this function not on the stack
            },
            m_returns.data());
    }
    ~Module()
    {
        dlclose(m_handle);
        LookUpSymbol(1); // now what was read of the module is dropped
    }
    Module(Module const &) = delete;
    Module &operator=(Module const &) = delete;

    /// In the function that is not exported and has another one inlined.
    Symbol Hidden() const { return LookUpSymbol(m_returns[0] - 1); }

    /// In the exported one.
    Symbol Exported() const { return LookUpSymbol(Address()); }

    std::uintptr_t Address() const { return m_returns[1] - 1; }

private:
    void *m_handle;
    std::array<std::uintptr_t, 2> m_returns{};
};

void Copy(std::string const &from, std::string const &to)
{
    // Writing into a file would change modules that are loaded from it.
    std::filesystem::remove(to);
    std::filesystem::copy_file(from, to);
}

std::string const WithSymbols = VANSYS_SYMBOL_MODULE;
std::string const Other = VANSYS_OTHER_SYMBOL_MODULE;
std::string const Stripped =
    std::filesystem::path(WithSymbols).replace_filename("libsymbol_module_stripped.so").string();

bool HasLine(Symbol const &symbol)
{
    return symbol.function == "probe::Outer" && symbol.line == 8 && // the call
           std::string_view(symbol.file).ends_with("/SymbolModule.cpp");
}

/// In the bytes of a module's file. Behind it are debugging information, symbol table and section headers.
std::size_t EndOfLoadedPart(std::string const &bytes, ElfW(Ehdr) const &file)
{
    std::size_t end = 0;
    for (unsigned i = 0; i < file.e_phnum; ++i)
    {
        ElfW(Phdr) part;
        std::memcpy(&part, bytes.data() + file.e_phoff + i * sizeof part, sizeof part);
        end = std::max<std::size_t>(end, part.p_type == PT_LOAD ? part.p_offset + part.p_filesz : 0);
    }
    return end;
}

} // namespace

TEST(Symbols, AreTheOutermostFunctionAndTheInnermostLine)
{
    for (std::string const &path : {WithSymbols, Stripped})
    {
        Module const module(path);
        Symbol const symbol = module.Hidden();
        EXPECT_TRUE(HasLine(symbol)) << symbol.function << ' ' << symbol.file << ' ' << symbol.line;
        EXPECT_EQ(symbol.fullFunction, "probe::Outer(void (*)(void*), void*)");
        EXPECT_EQ(symbol.imagePath, path);
        EXPECT_EQ(symbol.module, std::filesystem::path(path).filename());
        Dl_info info;
        ASSERT_NE(dladdr(reinterpret_cast<void *>(module.Address()), &info), 0);
        EXPECT_EQ(symbol.moduleBase, reinterpret_cast<std::uintptr_t>(info.dli_fbase));
    }
    auto const withoutLines = reinterpret_cast<std::uintptr_t>(&dlsym);
    EXPECT_NE(LookUpSymbol(withoutLines).function.find("dlsym"), std::string::npos);
    EXPECT_EQ(LookUpSymbol(1).module, "");
}

TEST(Symbols, AreNotThoseOfADebugFileOfAnotherBuild)
{
    TemporaryFolder const folder;
    std::string const path = folder.Path() / "libsymbol_module_stripped.so";
    Copy(Stripped, path);
    Copy(Other, folder.Path() / "symbol_module.debug");
    Module const module(path);
    EXPECT_EQ(module.Hidden().file, "");
    EXPECT_EQ(module.Exported().function, "symbol_module_outer");
}

TEST(Symbols, FollowWhatIsLoaded)
{
    TemporaryFolder const folder;
    std::string const path = folder.Path() / "module.so";
    std::uintptr_t address = 0;
    for (std::string const &build : {WithSymbols, Other, WithSymbols})
    {
        // Each is likely to be loaded where the one before was. Frames are found by what they have there now.
        Copy(build, path);
        Module const module(path);
        address = module.Address();
        EXPECT_EQ(module.Hidden().function, build == Other ? "other::Outer" : "probe::Outer");
        EXPECT_EQ(module.Exported().function, "symbol_module_outer");
    }
    EXPECT_EQ(LookUpSymbol(address).module, "") << "the module is gone";

    // The file is another one meanwhile, or there is none: what the dynamic linker has loaded still counts.
    Copy(WithSymbols, path);
    Module const module(path);
    Copy(Other, path);
    EXPECT_EQ(module.Hidden().function, "");
    EXPECT_EQ(module.Exported().function, "symbol_module_outer");
    std::filesystem::remove(path);
    EXPECT_EQ(module.Exported().function, "symbol_module_outer");
}

TEST(Symbols, AreFoundOnceThereAreDescriptorsAgain)
{
    auto const countDescriptors = []
    { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    auto const descriptors = countDescriptors();
    Module const module(WithSymbols);
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    rlimit const none{0, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_EQ(module.Hidden().function, "");
    EXPECT_EQ(module.Exported().function, "symbol_module_outer");
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_TRUE(HasLine(module.Hidden()));
    EXPECT_EQ(countDescriptors(), descriptors);
}

TEST(Symbols, AreFoundOnceThereIsMemoryAgain)
{
    std::optional<Module> module;
    auto const lookUp = [&module]
    {
        if (!HasLine(module->Hidden()))
            throw std::bad_alloc(); // what the look-up itself does not
    };
    EXPECT_GT(failEachAllocation([&module] { module.emplace(WithSymbols); }, lookUp, lookUp), 10);
}

TEST(Symbols, OfDamagedFilesDoNotEndTheProcess)
{
    TemporaryFolder const folder;
    std::string const path = folder.Path() / "module.so";
    std::string const whole = folder.Contents(WithSymbols);
    ElfW(Ehdr) header;
    std::memcpy(&header, whole.data(), sizeof header);
    std::size_t const debugInformation = EndOfLoadedPart(whole, header);
    std::mt19937 random(1);
    // Each byte on its own, divisors among them, and those of the section headers, which refer to all else.
    // Then some of anything.
    for (std::size_t i = debugInformation; i < whole.size() + 100; ++i)
    {
        std::string damaged = whole;
        if (i < whole.size())
            damaged[i] = static_cast<char>(i < header.e_shoff ? 0 : 0xFF);
        else if (i % 8 == 0)
            damaged.resize(debugInformation + random() % (whole.size() - debugInformation));
        for (std::size_t changes = i < whole.size() ? 0 : i % 8; changes > 0; --changes)
            damaged[debugInformation + random() % (damaged.size() - debugInformation)] =
                static_cast<char>(random());
        std::filesystem::remove(path);
        std::ofstream(path, std::ios::binary) << damaged;
        Module const module(path);
        std::string const function = module.Exported().function; // whatever it is
        EXPECT_LT(module.Hidden().function.size() + function.size(), whole.size()) << i;
    }
}
