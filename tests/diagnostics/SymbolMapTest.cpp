// The reader of symbol maps, over bytes: the map of a small DLL, which tools/make-vsym wrote.
#include "main/diagnostics/SymbolMap.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace
{

using vansys::detail::Crc32;
using vansys::detail::ModuleIdentity;
using vansys::detail::SymbolMap;
using Fault = SymbolMap::Fault;

constexpr ModuleIdentity Sample = {{'\x8C', '\x13', '\x69', '\xE7', '\x83', '\xF8', '\x0B', '\x3C', '\x06',
                                    '\x8A', '\xCB', '\xBC', '\x00', '\xA0', '\x3B', '\x49'},
                                   1};

std::string SampleBytes()
{
    std::ifstream file(VANSYS_TEST_DATA "/sample.vsym", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteWord(std::string &bytes, std::size_t offset, std::uint32_t word)
{
    for (int i = 0; i < 4; ++i)
        bytes[offset + static_cast<std::size_t>(i)] = static_cast<char>(word >> 8 * i);
}

TEST(SymbolMap, FindsFunctionsFilesAndLines)
{
    struct Row
    {
        std::uint32_t address;
        char const *fullFunction;
        char const *function;
        char const *file;
        std::uint32_t line;
    };
    constexpr char const *Count = "(anonymous namespace)::Count(char const*)";
    constexpr Row Rows[] = {{0, "", "", "", 0},
                            {0xFFF, "", "", "", 0},
                            {0x1000, Count, "(anonymous namespace)::Count", "sample.cpp", 7},
                            {0x100F, Count, "(anonymous namespace)::Count", "sample.cpp", 9},
                            {0x1030, "Length", "Length", "sample.cpp", 24},
                            {0x1048, "Area", "Area", "shapes.h", 8},
                            {0x1050, "Area", "Area", "sample.cpp", 19},
                            {0x1064, "Area", "Area", "", 0},
                            {0x1082, "int shapes::Cube<int>(int)", "shapes::Cube<int>", "shapes.h", 16},
                            {0x1083, "int shapes::Cube<int>(int)", "shapes::Cube<int>", "shapes.h", 17},
                            {0x10A0, "", "", "", 0},
                            {0xFFFFFFFF, "", "", "", 0}};
    std::string const bytes = SampleBytes();
    SymbolMap map;
    ASSERT_EQ(map.Open(bytes, Sample), Fault::None);
    for (Row const &row : Rows)
    {
        SCOPED_TRACE(row.address);
        SymbolMap::Place const place = map.Find(row.address);
        EXPECT_EQ(place.fullFunction, row.fullFunction);
        EXPECT_EQ(place.function, row.function);
        EXPECT_EQ(place.file, row.file);
        EXPECT_EQ(place.line, row.line);
    }
}

TEST(SymbolMap, RefusesWhatIsDamagedOrForeign)
{
    std::string const sound = SampleBytes();
    SymbolMap map;
    for (std::size_t length = 0; length < sound.size(); ++length)
        EXPECT_EQ(map.Open(sound.substr(0, length), Sample), Fault::Damaged) << length;
    EXPECT_EQ(map.Open(sound + '\0', Sample), Fault::Damaged);
    for (std::size_t offset = 0; offset < sound.size(); ++offset)
    {
        std::string bytes = sound;
        bytes[offset] = static_cast<char>(bytes[offset] ^ 0x10);
        bool const isVersion = offset >= 4 && offset < 8;
        EXPECT_EQ(map.Open(bytes, Sample), isVersion ? Fault::OtherVersion : Fault::Damaged) << offset;
        EXPECT_EQ(map.Find(0x1000).function, "");
    }
    // Tables that are longer than the file, or that leave some of it, though the checksum is right.
    for (std::size_t offset = 36; offset < 56; offset += 4)
    {
        for (std::uint32_t const size : {0u, 1u, 0xFFFFFFFFu})
        {
            std::string bytes = sound;
            WriteWord(bytes, offset, size);
            WriteWord(bytes, 12, Crc32(std::string_view(bytes).substr(16)));
            EXPECT_EQ(map.Open(bytes, Sample), Fault::Damaged) << offset;
        }
    }
    ModuleIdentity other = Sample;
    other.age = 2;
    EXPECT_EQ(map.Open(sound, other), Fault::OtherModule);
}

} // namespace
