// Whatever bytes a symbol map is made of, the reader keeps to them. What is wrong in the header is put right
// first, so that the tables are reached; the same bytes are looked at as a module, too.

#include "FuzzInput.h"

#include "main/diagnostics/SymbolMap.h"

#include <cstring>
#include <functional>

using fuzz::Require;
using vansys::detail::Crc32;
using vansys::detail::ModuleIdentity;
using vansys::detail::SymbolMap;

namespace
{

constexpr std::size_t HeaderSize = 56;

void writeWord(std::string &bytes, std::size_t offset, std::uint32_t word)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<char>(word >> 8 * i);
}

bool isWithin(std::string_view part, std::string_view whole)
{
    std::less_equal<char const *> const isNotAfter;
    return part.empty() || (isNotAfter(whole.data(), part.data()) &&
                            isNotAfter(part.data() + part.size(), whole.data() + whole.size()));
}

void check(SymbolMap const &map, std::uint32_t address, std::string_view bytes)
{
    SymbolMap::Place const place = map.Find(address);
    Require(isWithin(place.function, place.fullFunction) && isWithin(place.fullFunction, bytes));
    Require(isWithin(place.file, bytes) && (place.line != 0 || place.file.empty()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    std::string bytes(reinterpret_cast<char const *>(data), size);
    vansys::detail::ReadModuleIdentity(bytes);

    ModuleIdentity identity;
    SymbolMap map;
    if (map.Open(bytes, identity) != SymbolMap::Fault::None)
        Require(map.Find(0x1000).fullFunction.empty());
    if (bytes.size() < HeaderSize)
        return 0;
    bytes.replace(0, 4, "VSYM");
    writeWord(bytes, 4, 1);
    writeWord(bytes, 8, static_cast<std::uint32_t>(bytes.size()));
    writeWord(bytes, 12, Crc32(std::string_view(bytes).substr(16)));
    std::memcpy(identity.guid.data(), bytes.data() + 16, identity.guid.size());
    identity.age = static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[32]));
    if (map.Open(bytes, identity) != SymbolMap::Fault::None)
        return 0;
    for (std::uint32_t address : {0u, 0x1000u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        check(map, address, bytes);
    for (std::size_t offset = HeaderSize; offset + 4 <= bytes.size(); offset += 4)
    {
        std::uint32_t address = 0;
        std::memcpy(&address, bytes.data() + offset, sizeof address);
        check(map, address, bytes);
    }
    return 0;
}
