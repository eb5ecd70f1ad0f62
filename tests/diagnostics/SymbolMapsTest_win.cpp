// The symbol map of vansys.dll, and those of copies of it that are not right, as the look-up finds them.
#include "main/diagnostics/SymbolMaps_win.h"

#include "main/diagnostics/SymbolMap.h"
#include "main/platform/Windows.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using vansys::detail::LookUpInSymbolMap;
using vansys::detail::LookUpSymbol;
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

// Where the debugging information has only a function's name in its scope, the list has no more, either. Of
// the stripped library, the system's symbol handler knows no lines.
TEST(SymbolMaps, KnowWhatTheDebuggingInformationSays)
{
    std::uintptr_t const base = Load(Dll);
    std::uintptr_t const stripped = Load(VANSYS_STRIPPED_DLL);
    ASSERT_TRUE(base && stripped);
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
        Symbol const lookedUp = LookUpSymbol(stripped + distance);
        EXPECT_TRUE(lookedUp.file == file && lookedUp.line == line) << distance;
        EXPECT_EQ(lookedUp.module + lookedUp.notice, "stripped");
    }
    EXPECT_GT(fullNames, 500);
}

TEST(SymbolMaps, SayOnceWhyTheyAreIgnored)
{
    constexpr std::size_t Nothing = 0; // is changed: the map is a folder
    struct Row
    {
        std::string name;
        std::size_t changedAt;
        bool isChecksumRight;
        std::string reason;
    } const rows[] = {{"folder", Nothing, false, "it cannot be read"},
                      {"damaged", 100, false, "it is damaged"},
                      {"later", 4, false, "it is of another version"},
                      {"other.build", 16, true, "it belongs to another module"}};
    TemporaryFolder const folder;
    std::vector<std::uintptr_t> modules;
    for (Row const &row : rows)
    {
        SCOPED_TRACE(row.name);
        fs::path const map = folder.Path() / (row.name + ".vsym");
        fs::path const copy = folder.Path() / (row.name + ".dll");
        fs::copy_file(VANSYS_STRIPPED_DLL, copy);
        std::string bytes = folder.Contents(fs::path(Dll).replace_extension(".vsym"));
        bytes[row.changedAt] = static_cast<char>(bytes[row.changedAt] ^ 0x7F);
        std::uint32_t const checksum = vansys::detail::Crc32(std::string_view(bytes).substr(16));
        if (row.isChecksumRight)
            std::memcpy(&bytes[12], &checksum, sizeof checksum);
        if (row.changedAt == Nothing)
            fs::create_directory(map);
        else
            std::ofstream(map, std::ios::binary) << bytes;
        modules.push_back(Load(copy));
        ASSERT_NE(modules.back(), 0u);
        std::string const notice = "(symbol map " + row.name + ".vsym ignored: " + row.reason + ")";
        for (std::string const &expected : {notice, std::string()})
        {
            Symbol const symbol = LookUpSymbol(modules.back() + 0x1000);
            EXPECT_EQ(symbol.line, 0u);
            EXPECT_EQ(symbol.notice, expected);
        }
    }
    for (std::uintptr_t const module : modules)
        FreeLibrary(reinterpret_cast<HMODULE>(module));
}

} // namespace
