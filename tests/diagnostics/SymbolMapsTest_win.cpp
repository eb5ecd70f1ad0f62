// The symbol map of vansys.dll, and those of copies of it that are not right, as the look-up finds them.
#include "main/diagnostics/SymbolMaps_win.h"

#include "main/diagnostics/SymbolMap.h"
#include "main/platform/Windows.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using vansys::detail::LookUpInSymbolMap;
using vansys::detail::Symbol;

fs::path const Dll = VANSYS_DLL;

std::uintptr_t Load(fs::path const &path)
{
    return reinterpret_cast<std::uintptr_t>(LoadLibraryW(path.c_str()));
}

struct Address
{
    std::uintptr_t distance;
    std::string function;
    std::string file;
    unsigned long line;
};

/// What addr2line says of addresses in the library.
std::vector<Address> ReadAddresses()
{
    std::ifstream list(VANSYS_ADDRESS_LIST);
    std::vector<Address> addresses;
    std::string distance, function, file, line;
    while (std::getline(list, distance, '\t') && std::getline(list, function, '\t') &&
           std::getline(list, file, '\t') && std::getline(list, line))
        addresses.push_back({std::stoul(distance), function, file, std::stoul(line)});
    EXPECT_EQ(addresses.size(), 1000u);
    return addresses;
}

// Where the debugging information has only a function's name in its scope, the list has no more, either.
TEST(SymbolMaps, KnowWhatTheDebuggingInformationSays)
{
    std::uintptr_t const base = Load(Dll);
    ASSERT_NE(base, 0u);
    int fullNames = 0;
    for (auto const &[distance, function, file, line] : ReadAddresses())
    {
        Symbol symbol;
        ASSERT_TRUE(LookUpInSymbolMap(base + distance, symbol)) << distance;
        EXPECT_EQ(symbol.file, file) << distance;
        EXPECT_EQ(symbol.line, line) << distance;
        bool const isFull = symbol.fullFunction == function;
        EXPECT_TRUE(isFull ||
                    symbol.function.find(function.substr(0, function.find('<'))) != std::string::npos)
            << function << " is " << symbol.fullFunction;
        fullNames += isFull;
    }
    EXPECT_GT(fullNames, 500);
}

// Of the stripped library, the system's symbol handler knows no lines.
TEST(SymbolMaps, NameWhatTheSymbolHandlerDoesNotKnow)
{
    std::uintptr_t const base = Load(VANSYS_STRIPPED_DLL);
    ASSERT_NE(base, 0u);
    for (Address const &address : ReadAddresses())
    {
        Symbol const symbol = vansys::detail::LookUpSymbol(base + address.distance);
        EXPECT_EQ(symbol.file, address.file);
        EXPECT_EQ(symbol.line, address.line);
        EXPECT_EQ(symbol.module, "stripped");
        EXPECT_EQ(symbol.notice, "");
    }
}

TEST(SymbolMaps, SayOnceWhyTheyAreIgnored)
{
    enum MapIs
    {
        Absent,
        AFolder,
        Changed
    };
    struct Row
    {
        char const *name;
        MapIs map;
        std::size_t changedAt;
        bool isChecksumRight;
        char const *notice;
    };
    constexpr Row Rows[] = {
        {"absent", Absent, 0, false, ""},
        {"folder", AFolder, 0, false, "(symbol map folder.vsym ignored: it cannot be read)"},
        {"damaged", Changed, 100, false, "(symbol map damaged.vsym ignored: it is damaged)"},
        {"later", Changed, 4, false, "(symbol map later.vsym ignored: it is of another version)"},
        {"other.build", Changed, 16, true,
         "(symbol map other.build.vsym ignored: it belongs to another module)"},
    };
    std::ifstream file(fs::path(Dll).replace_extension(".vsym"), std::ios::binary);
    std::string const sound{std::istreambuf_iterator<char>(file), {}};
    fs::path const folder = fs::temp_directory_path() / "vansys symbol maps";
    fs::remove_all(folder);
    fs::create_directories(folder);
    std::vector<std::uintptr_t> modules;
    for (Row const &row : Rows)
    {
        SCOPED_TRACE(row.name);
        fs::path const map = folder / (std::string(row.name) + ".vsym");
        fs::path const copy = folder / (std::string(row.name) + ".dll");
        fs::copy_file(VANSYS_STRIPPED_DLL, copy);
        if (row.map == AFolder)
            fs::create_directory(map);
        if (row.map == Changed)
        {
            std::string bytes = sound;
            bytes[row.changedAt] = static_cast<char>(bytes[row.changedAt] ^ 0x7F);
            std::uint32_t const checksum = vansys::detail::Crc32(std::string_view(bytes).substr(16));
            if (row.isChecksumRight)
                std::memcpy(&bytes[12], &checksum, sizeof checksum);
            std::ofstream(map, std::ios::binary) << bytes;
        }
        modules.push_back(Load(copy));
        ASSERT_NE(modules.back(), 0u);
        for (char const *const notice : {row.notice, ""})
        {
            Symbol const symbol = vansys::detail::LookUpSymbol(modules.back() + 0x1000);
            EXPECT_EQ(symbol.line, 0u);
            EXPECT_EQ(symbol.notice, notice);
        }
    }
    for (std::uintptr_t const module : modules)
        FreeLibrary(reinterpret_cast<HMODULE>(module));
    fs::remove_all(folder);
}

} // namespace
