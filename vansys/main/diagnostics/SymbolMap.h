/// @file
/// SymbolMap: which functions, source files and lines lie at the addresses of a module, as `tools/make-vsym`
/// wrote it into a file beside the module. `docs/vsym.md` describes the format.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vansys::detail
{

/// What the linker gave a module of its own, so that one build of it is told from another: its build id. It
/// is the same before and after the module is stripped.
struct ModuleIdentity
{
    std::array<char, 16> guid = {}; ///< as in the module
    std::uint32_t age = 0;

    bool operator==(ModuleIdentity const &other) const noexcept = default;
};

/// Reads the identity from a module for Windows as it is in memory, from its first byte to its last: the
/// headers in front, each section at its address. None when the module has none, or is not one.
std::optional<ModuleIdentity> ReadModuleIdentity(std::string_view image) noexcept;

/// The CRC-32 of ISO-HDLC, which is that of zip files.
std::uint32_t Crc32(std::string_view bytes) noexcept;

/// A view of a map's bytes, which have to stay as they are for as long as it is used. It allocates nothing,
/// and any number of threads may search it.
class SymbolMap
{
public:
    enum class Fault
    {
        None,
        Damaged,      ///< too short, not such a file at all, or its checksum is wrong
        OtherVersion, ///< of a format that is not known here
        OtherModule,
    };

    /// What is not known is empty, or 0. The texts are parts of the map's bytes.
    struct Place
    {
        std::string_view function;     ///< the name with its scopes
        std::string_view fullFunction; ///< with parameters and, for a template, with the result
        std::string_view file;         ///< of the source
        std::uint32_t line = 0;
    };

    SymbolMap() noexcept = default;

    /// Takes the bytes of a file, reading each of them once, unless they have a fault; then the map is empty.
    Fault Open(std::string_view bytes, ModuleIdentity const &module) noexcept;

    /// What lies at the address, which counts from the module's first byte: one binary search for the
    /// function and one for the line. Bytes that passed `Open` and are nonsense give a nonsensical or empty
    /// place.
    Place Find(std::uint32_t address) const noexcept;

private:
    void FindFunction(std::uint32_t address, Place &place) const noexcept;
    void FindLine(std::uint32_t address, Place &place) const noexcept;
    std::string_view TextAt(std::uint32_t offset) const noexcept;

    std::string_view m_functions;
    std::string_view m_blocks;
    std::string_view m_files;
    std::string_view m_rows;
    std::string_view m_text; ///< ends with a zero, unless empty
};

} // namespace vansys::detail
