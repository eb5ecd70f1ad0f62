#include "main/diagnostics/SymbolMap.h"

#include <algorithm>
#include <iterator>

namespace vansys::detail
{
namespace
{

constexpr std::string_view Magic = "VSYM";
constexpr std::uint32_t Version = 1;

// Where what is in the header, and how long the entries of the tables are.
constexpr std::size_t VersionAt = 4;
constexpr std::size_t FileSizeAt = 8;
constexpr std::size_t ChecksumAt = 12;
constexpr std::size_t GuidAt = 16;
constexpr std::size_t AgeAt = 32;
constexpr std::size_t TableSizesAt = 36;
constexpr std::size_t HeaderSize = 56;
constexpr std::size_t FunctionSize = 12;
constexpr std::size_t BlockSize = 8;
constexpr std::size_t FileSize = 4;

/// The number with the lowest byte first that is at `offset`. The caller has checked that it is within the
/// bytes.
template <class Unsigned>
Unsigned NumberAt(std::string_view bytes, std::uint64_t offset) noexcept
{
    Unsigned number = 0;
    for (std::size_t i = sizeof number; i-- > 0;)
    {
        auto const byte = static_cast<unsigned char>(bytes[static_cast<std::size_t>(offset) + i]);
        number = static_cast<Unsigned>(number << 8 | byte);
    }
    return number;
}

std::uint32_t WordAt(std::string_view bytes, std::uint64_t offset) noexcept
{
    return NumberAt<std::uint32_t>(bytes, offset);
}

/// Takes numbers of variable length from the front: seven bits to the byte, the lowest first, and the highest
/// bit set in all bytes but the last. Where there is none, it says so from then on.
class NumberReader
{
public:
    explicit NumberReader(std::string_view bytes) noexcept : m_bytes(bytes) {}

    bool Take(std::uint32_t &number) noexcept
    {
        number = 0;
        for (unsigned shift = 0; shift < 35 && !m_bytes.empty(); shift += 7)
        {
            auto const byte = static_cast<unsigned char>(m_bytes.front());
            m_bytes.remove_prefix(1);
            number |= (byte & 0x7Fu) << shift;
            if (byte < 0x80)
                return true;
        }
        m_bytes = {};
        return false;
    }

private:
    std::string_view m_bytes;
};

/// The index of the last entry that begins at or before the address, of a table whose entries begin with
/// addresses and are sorted by them; the number of entries when there is none.
std::size_t FindLast(std::string_view table, std::size_t entrySize, std::uint32_t address) noexcept
{
    std::size_t const count = table.size() / entrySize;
    std::size_t first = 0;
    for (std::size_t end = count; first < end;)
    {
        std::size_t const middle = first + (end - first) / 2;
        if (WordAt(table, middle * entrySize) <= address)
            first = middle + 1;
        else
            end = middle;
    }
    return first == 0 ? count : first - 1;
}

constexpr std::array<std::uint32_t, 256> MakeCrcTable() noexcept
{
    std::array<std::uint32_t, 256> table = {};
    for (std::uint32_t i = 0; i < table.size(); ++i)
    {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit)
            value = value >> 1 ^ (value & 1 ? 0xEDB88320u : 0u);
        table[i] = value;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> CrcTable = MakeCrcTable();

} // namespace

std::uint32_t Crc32(std::string_view bytes) noexcept
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (char const byte : bytes)
        crc = crc >> 8 ^ CrcTable[(crc ^ static_cast<unsigned char>(byte)) & 0xFF];
    return ~crc;
}

std::optional<ModuleIdentity> ReadModuleIdentity(std::string_view image) noexcept
{
    auto const has = [image](std::uint64_t offset, std::size_t size)
    { return offset <= image.size() && size <= image.size() - offset; };
    auto const startsAt = [image](std::uint64_t offset, std::string_view text)
    { return image.substr(static_cast<std::size_t>(offset)).starts_with(text); };

    // The layouts are those of the headers of Windows: IMAGE_DOS_HEADER, IMAGE_NT_HEADERS32 and ..64,
    // IMAGE_DEBUG_DIRECTORY.
    if (!has(0, 64) || !image.starts_with("MZ"))
        return std::nullopt;
    std::uint64_t const header = WordAt(image, 60);
    if (!has(header, 4 + 20 + 2) || !startsAt(header, std::string_view("PE\0\0", 4)))
        return std::nullopt;
    std::uint64_t const optional = header + 4 + 20;
    bool const isWide = NumberAt<std::uint16_t>(image, optional) == 0x20B;
    std::uint64_t const directories = optional + (isWide ? 112 : 96);
    constexpr std::size_t DebugDirectory = 6;
    if (!has(directories - 4, 4 + 8 * (DebugDirectory + 1)) ||
        WordAt(image, directories - 4) <= DebugDirectory)
        return std::nullopt;

    constexpr std::uint32_t EntrySize = 28;
    constexpr std::uint32_t CodeView = 2;
    std::uint64_t entry = WordAt(image, directories + 8 * DebugDirectory);
    for (std::uint32_t left = WordAt(image, directories + 8 * DebugDirectory + 4);
         left >= EntrySize && has(entry, EntrySize); left -= EntrySize, entry += EntrySize)
    {
        std::uint64_t const record = WordAt(image, entry + 20);
        if (WordAt(image, entry + 12) != CodeView || !has(record, 24) || !startsAt(record, "RSDS"))
            continue;
        ModuleIdentity identity;
        image.copy(identity.guid.data(), identity.guid.size(), static_cast<std::size_t>(record) + 4);
        identity.age = WordAt(image, record + 20);
        return identity;
    }
    return std::nullopt;
}

SymbolMap::Fault SymbolMap::Open(std::string_view bytes, ModuleIdentity const &module) noexcept
{
    *this = {};
    // A later version may have another header, but begins the same.
    if (bytes.size() < VersionAt + 4 || !bytes.starts_with(Magic))
        return Fault::Damaged;
    if (WordAt(bytes, VersionAt) != Version)
        return Fault::OtherVersion;
    if (bytes.size() < HeaderSize || WordAt(bytes, FileSizeAt) != bytes.size() ||
        WordAt(bytes, ChecksumAt) != Crc32(bytes.substr(GuidAt)))
        return Fault::Damaged;
    ModuleIdentity identity;
    bytes.copy(identity.guid.data(), identity.guid.size(), GuidAt);
    identity.age = WordAt(bytes, AgeAt);
    if (!(identity == module))
        return Fault::OtherModule;

    // The tables follow each other, and fill the file.
    std::string_view *const tables[] = {&m_functions, &m_blocks, &m_files, &m_rows, &m_text};
    constexpr std::size_t EntrySizes[] = {FunctionSize, BlockSize, FileSize, 1, 1};
    std::size_t begin = HeaderSize;
    for (std::size_t i = 0; i < std::size(tables); ++i)
    {
        std::uint64_t const size = std::uint64_t(WordAt(bytes, TableSizesAt + 4 * i)) * EntrySizes[i];
        if (size > bytes.size() - begin)
        {
            *this = {};
            return Fault::Damaged;
        }
        *tables[i] = bytes.substr(begin, static_cast<std::size_t>(size));
        begin += tables[i]->size();
    }
    if (begin != bytes.size() || m_text.empty() || m_text.back() != '\0')
    {
        *this = {};
        return Fault::Damaged;
    }
    return Fault::None;
}

SymbolMap::Place SymbolMap::Find(std::uint32_t address) const noexcept
{
    Place place;
    FindFunction(address, place);
    FindLine(address, place);
    return place;
}

void SymbolMap::FindFunction(std::uint32_t address, Place &place) const noexcept
{
    std::size_t const index = FindLast(m_functions, FunctionSize, address);
    std::size_t const entry = index * FunctionSize;
    if (entry == m_functions.size())
        return;
    place.fullFunction = TextAt(WordAt(m_functions, entry + 4));
    std::size_t const begin = NumberAt<std::uint16_t>(m_functions, entry + 8);
    std::size_t const length = NumberAt<std::uint16_t>(m_functions, entry + 10);
    place.function = place.fullFunction.substr(std::min(begin, place.fullFunction.size()), length);
}

void SymbolMap::FindLine(std::uint32_t address, Place &place) const noexcept
{
    std::size_t const entry = FindLast(m_blocks, BlockSize, address) * BlockSize;
    if (entry == m_blocks.size())
        return;
    bool const isLast = entry + BlockSize == m_blocks.size();
    std::size_t const begin = WordAt(m_blocks, entry + 4);
    std::size_t const end = isLast ? m_rows.size() : WordAt(m_blocks, entry + BlockSize + 4);
    if (begin > end || end > m_rows.size())
        return;

    // Numbers that a sound map does not have wrap around, and give nonsense.
    NumberReader numbers(m_rows.substr(begin, end - begin));
    std::uint32_t rowAddress = WordAt(m_blocks, entry);
    std::uint32_t line = 0;
    std::uint32_t file = 0;
    std::uint32_t distance = 0;
    std::uint32_t change = 0;
    while (numbers.Take(distance) && numbers.Take(change))
    {
        rowAddress += distance;
        if (rowAddress > address)
            break;
        if ((change & 1) != 0 && !numbers.Take(file))
            break;
        std::uint32_t const zigzag = change >> 1;
        line += zigzag >> 1 ^ (0u - (zigzag & 1));
        place.line = line;
    }
    if (place.line != 0 && file < m_files.size() / FileSize)
        place.file = TextAt(WordAt(m_files, file * FileSize));
}

std::string_view SymbolMap::TextAt(std::uint32_t offset) const noexcept
{
    if (offset >= m_text.size())
        return {};
    std::string_view const rest = m_text.substr(offset);
    return rest.substr(0, rest.find('\0'));
}

} // namespace vansys::detail
