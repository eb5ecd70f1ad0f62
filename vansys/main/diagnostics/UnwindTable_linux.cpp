#include "main/diagnostics/UnwindTable_linux.h"

#include <bit>
#include <dlfcn.h>

namespace vansys::detail
{

// How pointers are encoded: the low bits tell the type, the next ones what it is relative to.
namespace encoding
{
constexpr unsigned char Pointer = 0x00, Unsigned = 0x01, Unsigned2 = 0x02, Unsigned4 = 0x03, Unsigned8 = 0x04,
                        Signed = 0x09, Signed2 = 0x0A, Signed4 = 0x0B, Signed8 = 0x0C, TypeMask = 0x0F;
constexpr unsigned char Absolute = 0x00, RelativeToItself = 0x10, RelativeToBase = 0x30, BaseMask = 0x70;
constexpr unsigned char Indirect = 0x80;
} // namespace encoding

void TableReader::Skip(std::int64_t count) noexcept
{
    if (count < m_begin - m_position || count > m_end - m_position)
        m_hasFailed = true;
    else
        m_position += count;
}

TableReader TableReader::At(std::uintptr_t address) const noexcept
{
    TableReader reader = *this;
    reader.m_position = std::bit_cast<unsigned char const *>(address);
    if (reader.m_position < m_begin || reader.m_position >= m_end)
    {
        reader.m_position = m_begin;
        reader.m_hasFailed = true;
    }
    return reader;
}

TableReader TableReader::First(std::uint64_t size) const noexcept
{
    TableReader part = *this;
    if (size > static_cast<std::uint64_t>(m_end - m_position))
        part.m_hasFailed = true;
    else
        part.m_end = m_position + size;
    return part;
}

std::uint64_t TableReader::ReadUnsigned() noexcept
{
    std::uint64_t number = 0;
    for (unsigned shift = 0;; shift += 7)
    {
        auto const byte = Read<unsigned char>();
        if (shift < 64)
            number |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80)
            return number;
    }
}

std::int64_t TableReader::ReadSigned() noexcept
{
    std::uint64_t number = 0;
    for (unsigned shift = 0;; shift += 7)
    {
        auto const byte = Read<unsigned char>();
        if (shift < 64)
            number |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte >= 0x80)
            continue;
        if ((byte & 0x40) != 0 && shift + 7 < 64)
            number |= ~std::uint64_t{0} << (shift + 7);
        return static_cast<std::int64_t>(number);
    }
}

std::uintptr_t TableReader::ReadPointer(unsigned char encoding, std::uintptr_t base) noexcept
{
    using namespace encoding;
    auto const itself = reinterpret_cast<std::uintptr_t>(m_position);
    std::uintptr_t value = 0;
    switch (encoding & TypeMask)
    {
    case Pointer:
    case Unsigned8:
    case Signed8:
        value = Read<std::uint64_t>();
        break;
    case Unsigned:
        value = ReadUnsigned();
        break;
    case Unsigned2:
        value = Read<std::uint16_t>();
        break;
    case Unsigned4:
        value = Read<std::uint32_t>();
        break;
    case Signed:
        value = static_cast<std::uintptr_t>(ReadSigned());
        break;
    case Signed2:
        value = static_cast<std::uintptr_t>(std::int64_t{Read<std::int16_t>()});
        break;
    case Signed4:
        value = static_cast<std::uintptr_t>(std::int64_t{Read<std::int32_t>()});
        break;
    default:
        m_hasFailed = true;
    }
    if ((encoding & BaseMask) == RelativeToItself)
        value += itself;
    else if ((encoding & BaseMask) == RelativeToBase)
        value += base;
    else if ((encoding & BaseMask) != Absolute)
        m_hasFailed = true;
    // Addresses of functions, which alone matter here, are never indirect.
    m_hasFailed = m_hasFailed || (encoding & Indirect) != 0;
    return m_hasFailed ? 0 : value;
}

namespace
{

/// What several functions have in common, and where it is in the table ("common information entry").
struct Common
{
    std::uint64_t codeAlignment = 1;
    std::int64_t dataAlignment = 1;
    std::uint64_t returnAddressRegister = ReturnAddressRegister;
    unsigned char pointerEncoding = encoding::Pointer;
    bool hasAugmentation = false;
    bool isSignalFrame = false;
    TableReader program;
};

/// One function ("frame description entry").
struct Function
{
    Common common;
    std::uintptr_t begin = 0;
    std::uintptr_t size = 0;
    TableReader program;
};

/// The content of the entry that begins here, behind its length.
TableReader ReadEntry(TableReader table) noexcept
{
    constexpr std::uint32_t Extended = 0xFFFFFFFF;
    std::uint64_t length = table.Read<std::uint32_t>();
    if (length == Extended)
        length = table.Read<std::uint64_t>();
    return table.First(length);
}

bool ReadCommon(TableReader table, Common &common) noexcept
{
    TableReader entry = ReadEntry(table);
    auto const id = entry.Read<std::uint32_t>();
    auto const version = entry.Read<unsigned char>();
    if (id != 0 || (version != 1 && version != 3))
        return false;
    std::array<char, 8> augmentation{};
    for (std::size_t length = 0; (augmentation[length] = entry.Read<char>()) != 0; ++length)
        if (length + 1 == augmentation.size())
            return false;
    common.codeAlignment = entry.ReadUnsigned();
    common.dataAlignment = entry.ReadSigned();
    common.returnAddressRegister = version == 1 ? entry.Read<unsigned char>() : entry.ReadUnsigned();
    common.hasAugmentation = augmentation[0] == 'z';
    if (!common.hasAugmentation && augmentation[0] != 0)
        return false;
    if (common.hasAugmentation)
    {
        std::uint64_t const size = entry.ReadUnsigned();
        TableReader data = entry.First(size);
        entry.Skip(static_cast<std::int64_t>(size));
        for (char const *letter = augmentation.data() + 1; *letter != 0; ++letter)
        {
            if (*letter == 'R')
                common.pointerEncoding = data.Read<unsigned char>();
            else if (*letter == 'L')
                data.Skip(1);
            else if (*letter == 'P')
            {
                // Where the handler of exceptions is, of which only the size matters.
                auto const handler = data.Read<unsigned char>();
                data.ReadPointer(handler & encoding::TypeMask, 0);
            }
            else if (*letter == 'S')
                common.isSignalFrame = true;
            else
                return false;
        }
        if (data.HasFailed())
            return false;
    }
    common.program = entry;
    return !entry.HasFailed() && common.returnAddressRegister < RegisterCount;
}

bool ReadFunction(TableReader const &module, std::uintptr_t address, Function &function) noexcept
{
    TableReader entry = ReadEntry(module.At(address));
    auto const here = reinterpret_cast<std::uintptr_t>(entry.Position());
    auto const distance = entry.Read<std::uint32_t>();
    if (entry.HasFailed() || distance == 0 || !ReadCommon(module.At(here - distance), function.common))
        return false;
    unsigned char const pointers = function.common.pointerEncoding;
    function.begin = entry.ReadPointer(pointers, 0);
    function.size = entry.ReadPointer(pointers & encoding::TypeMask, 0);
    if (function.common.hasAugmentation)
        entry.Skip(static_cast<std::int64_t>(entry.ReadUnsigned()));
    function.program = entry;
    return !entry.HasFailed();
}

/// Finds the function in the sorted index of a module (`.eh_frame_hdr`).
bool FindFunction(std::uintptr_t instruction, Function &function) noexcept
{
    constexpr unsigned char SortedTable = encoding::RelativeToBase | encoding::Signed4;
    struct Row
    {
        std::int32_t function; // both relative to the index
        std::int32_t entry;
    };
    dl_find_object found{};
    if (_dl_find_object(std::bit_cast<void *>(instruction), &found) != 0 || !found.dlfo_eh_frame)
        return false;
    TableReader const module(static_cast<unsigned char const *>(found.dlfo_map_start),
                             static_cast<unsigned char const *>(found.dlfo_map_end));
    auto const base = reinterpret_cast<std::uintptr_t>(found.dlfo_eh_frame);
    TableReader index = module.At(base);
    auto const version = index.Read<unsigned char>();
    auto const tableEncoding = index.Read<unsigned char>();
    auto const countEncoding = index.Read<unsigned char>();
    auto const rowEncoding = index.Read<unsigned char>();
    index.ReadPointer(tableEncoding, base);
    std::uintptr_t const count = index.ReadPointer(countEncoding, base);
    TableReader const rows = index.First(count * sizeof(Row));
    if (version != 1 || rowEncoding != SortedTable || index.HasFailed() || rows.HasFailed())
        return false;

    auto const row = [&rows](std::uintptr_t number)
    {
        TableReader reader = rows;
        reader.Skip(static_cast<std::int64_t>(number * sizeof(Row)));
        return reader.Read<Row>();
    };
    auto const wanted = static_cast<std::intptr_t>(instruction - base);
    std::uintptr_t low = 0; // the rows before it begin at the instruction or earlier
    for (std::uintptr_t high = count; low < high;)
    {
        std::uintptr_t const middle = low + (high - low) / 2;
        if (row(middle).function <= wanted)
            low = middle + 1;
        else
            high = middle;
    }
    return low > 0 &&
           ReadFunction(module, base + static_cast<std::uintptr_t>(std::intptr_t{row(low - 1).entry}),
                        function) &&
           instruction - function.begin < function.size;
}

/// Carries out what the table says of a function, up to the instruction.
class LayoutProgram
{
public:
    LayoutProgram(Function const &function, std::uintptr_t instruction, FrameLayout &layout) noexcept
        : m_common(function.common),
          m_location(function.begin),
          m_instruction(instruction),
          m_layout(layout)
    {
    }

    bool Run(TableReader program) noexcept
    {
        while (!program.IsAtEnd() && m_location <= m_instruction)
            if (!Step(program))
                return false;
        return !program.HasFailed();
    }

    /// What has been set up to now is what later rules go back to.
    void KeepInitial() noexcept { m_initial = m_layout; }

private:
    enum Operation : unsigned char
    {
        NoOperation,
        SetLocation,
        Advance1,
        Advance2,
        Advance4,
        OffsetExtended,
        RestoreExtended,
        Undefined,
        SameValue,
        Register,
        RememberState,
        RestoreState,
        DefineAddress,
        DefineAddressRegister,
        DefineAddressOffset,
        DefineAddressExpression,
        Expression,
        OffsetExtendedSigned,
        DefineAddressSigned,
        DefineAddressOffsetSigned,
        ValueOffset,
        ValueOffsetSigned,
        ValueExpression,
        ArgumentsSize = 0x2E,
        NegativeOffsetExtended = 0x2F,
        // These have their first operand in the low bits.
        Advance = 0x40,
        Offset = 0x80,
        Restore = 0xC0,
        ShortMask = 0xC0
    };

    bool Step(TableReader &program) noexcept
    {
        auto const operation = program.Read<unsigned char>();
        std::uint64_t const low = operation & static_cast<unsigned char>(~ShortMask);
        switch (operation & ShortMask)
        {
        case Advance:
            m_location += low * m_common.codeAlignment;
            return true;
        case Offset:
            SetRule(low, {RegisterRule::Offset, Scaled(program.ReadUnsigned())});
            return true;
        case Restore:
            SetInitial(low);
            return true;
        default:
            return StepLocation(operation, program) || StepAddress(operation, program) ||
                   StepRule(operation, program) || StepState(operation, program);
        }
    }

    bool StepLocation(unsigned char operation, TableReader &program) noexcept
    {
        switch (operation)
        {
        case SetLocation:
            m_location = program.ReadPointer(m_common.pointerEncoding, 0);
            return true;
        case Advance1:
            m_location += program.Read<std::uint8_t>() * m_common.codeAlignment;
            return true;
        case Advance2:
            m_location += program.Read<std::uint16_t>() * m_common.codeAlignment;
            return true;
        case Advance4:
            m_location += program.Read<std::uint32_t>() * m_common.codeAlignment;
            return true;
        default:
            return false;
        }
    }

    bool StepAddress(unsigned char operation, TableReader &program) noexcept
    {
        RegisterRule &address = m_layout.address;
        switch (operation)
        {
        case DefineAddress:
            m_layout.addressRegister = program.ReadUnsigned();
            address = {RegisterRule::Offset, static_cast<std::int64_t>(program.ReadUnsigned())};
            return true;
        case DefineAddressSigned:
            m_layout.addressRegister = program.ReadUnsigned();
            address = {RegisterRule::Offset, ScaledSigned(program)};
            return true;
        case DefineAddressRegister:
            m_layout.addressRegister = program.ReadUnsigned();
            return true;
        case DefineAddressOffset:
            address.offset = static_cast<std::int64_t>(program.ReadUnsigned());
            return true;
        case DefineAddressOffsetSigned:
            address.offset = ScaledSigned(program);
            return true;
        case DefineAddressExpression:
            address = ReadExpression(RegisterRule::Expression, program);
            return true;
        default:
            return false;
        }
    }

    bool StepRule(unsigned char operation, TableReader &program) noexcept
    {
        switch (operation)
        {
        case OffsetExtended:
        case OffsetExtendedSigned:
        case ValueOffset:
        case ValueOffsetSigned:
        case NegativeOffsetExtended:
        {
            bool const isValue = operation == ValueOffset || operation == ValueOffsetSigned;
            bool const isSigned = operation == OffsetExtendedSigned || operation == ValueOffsetSigned;
            std::uint64_t const number = program.ReadUnsigned();
            std::int64_t const offset = isSigned ? ScaledSigned(program) : Scaled(program.ReadUnsigned());
            SetRule(number, {isValue ? RegisterRule::ValueOffset : RegisterRule::Offset,
                             operation == NegativeOffsetExtended ? -offset : offset});
            return true;
        }
        case Undefined:
            SetRule(program.ReadUnsigned(), {RegisterRule::Undefined});
            return true;
        case SameValue:
            SetRule(program.ReadUnsigned(), {RegisterRule::Same});
            return true;
        case Register:
        {
            std::uint64_t const number = program.ReadUnsigned();
            SetRule(number, {RegisterRule::Register, static_cast<std::int64_t>(program.ReadUnsigned())});
            return true;
        }
        case Expression:
        case ValueExpression:
        {
            std::uint64_t const number = program.ReadUnsigned();
            SetRule(number, ReadExpression(operation == Expression ? RegisterRule::Expression
                                                                   : RegisterRule::ValueExpression,
                                           program));
            return true;
        }
        case RestoreExtended:
            SetInitial(program.ReadUnsigned());
            return true;
        default:
            return false;
        }
    }

    bool StepState(unsigned char operation, TableReader &program) noexcept
    {
        switch (operation)
        {
        case RememberState:
            if (m_rememberedCount == m_remembered.size())
                return false;
            m_remembered[m_rememberedCount++] = m_layout;
            return true;
        case RestoreState:
            if (m_rememberedCount == 0)
                return false;
            m_layout = m_remembered[--m_rememberedCount];
            return true;
        case ArgumentsSize:
            program.ReadUnsigned(); // matters to handlers of exceptions only
            return true;
        default:
            return operation == NoOperation;
        }
    }

    std::int64_t Scaled(std::uint64_t factor) const noexcept
    {
        return static_cast<std::int64_t>(factor * static_cast<std::uint64_t>(m_common.dataAlignment));
    }

    std::int64_t ScaledSigned(TableReader &program) const noexcept
    {
        return Scaled(static_cast<std::uint64_t>(program.ReadSigned()));
    }

    static RegisterRule ReadExpression(RegisterRule::Kind kind, TableReader &program) noexcept
    {
        auto const size = static_cast<std::int64_t>(program.ReadUnsigned());
        unsigned char const *const begin = program.Position();
        program.Skip(size);
        return {kind, program.HasFailed() ? 0 : size, begin};
    }

    /// Vector registers, and others that no walk needs, are passed over.
    void SetRule(std::uint64_t number, RegisterRule const &rule) noexcept
    {
        if (number < RegisterCount)
            m_layout.registers[number] = rule;
    }

    void SetInitial(std::uint64_t number) noexcept
    {
        if (number < RegisterCount)
            m_layout.registers[number] = m_initial.registers[number];
    }

    Common const &m_common;
    std::uintptr_t m_location;
    std::uintptr_t m_instruction;
    FrameLayout &m_layout;
    FrameLayout m_initial;
    std::array<FrameLayout, 2> m_remembered;
    std::size_t m_rememberedCount = 0;
};

} // namespace

bool IsInModule(std::uintptr_t instruction) noexcept
{
    dl_find_object found{};
    return _dl_find_object(std::bit_cast<void *>(instruction), &found) == 0;
}

bool FindFrameLayout(std::uintptr_t instruction, FrameLayout &layout) noexcept
{
    Function function;
    if (!FindFunction(instruction, function))
        return false;
    layout = {};
    layout.returnAddressRegister = function.common.returnAddressRegister;
    layout.isSignalFrame = function.common.isSignalFrame;
    LayoutProgram program(function, instruction, layout);
    if (!program.Run(function.common.program))
        return false;
    program.KeepInitial();
    return program.Run(function.program);
}

} // namespace vansys::detail
