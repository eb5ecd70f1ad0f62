#include "main/diagnostics/OwnMemory_linux.h"
#include "main/diagnostics/UnwindTable_linux.h"

#include <utility>

namespace vansys::detail
{

namespace
{

/// The operations of DWARF that frames use. Those of objects and calls have no place there.
enum Operation : unsigned char
{
    Dereference = 0x06,
    Constant1u = 0x08,
    Constant1s,
    Constant2u,
    Constant2s,
    Constant4u,
    Constant4s,
    Constant8u,
    Constant8s,
    ConstantUnsigned,
    ConstantSigned,
    Duplicate,
    Drop,
    Over,
    Pick,
    Swap,
    Rotate,
    Absolute = 0x19,
    And,
    Divide,
    Minus,
    Modulo,
    Multiply,
    Negate,
    Not,
    Or,
    Plus,
    PlusConstant,
    ShiftLeft,
    ShiftRight,
    ShiftRightArithmetic,
    Xor,
    Branch,
    Equal,
    GreaterOrEqual,
    Greater,
    LessOrEqual,
    Less,
    NotEqual,
    Skip,
    Literal0 = 0x30,
    Literal31 = 0x4F,
    BaseRegister0 = 0x70,
    BaseRegister31 = 0x8F,
    BaseRegister = 0x92,
    NoOperation = 0x96
};

/// The stack of an expression. Values that are not there are 0, and make it fail.
class Values
{
public:
    bool HasFailed() const noexcept { return m_hasFailed; }

    void Push(std::uintptr_t value) noexcept
    {
        if (m_count == m_values.size())
            m_hasFailed = true;
        else
            m_values[m_count++] = value;
    }

    std::uintptr_t Pop() noexcept
    {
        std::uintptr_t const value = At(0);
        if (m_count > 0)
            --m_count;
        return value;
    }

    /// Counted from the top.
    std::uintptr_t At(std::size_t depth) noexcept
    {
        if (depth < m_count)
            return m_values[m_count - 1 - depth];
        m_hasFailed = true;
        return 0;
    }

private:
    std::array<std::uintptr_t, 32> m_values;
    std::size_t m_count = 0;
    bool m_hasFailed = false;
};

/// An operation on the two topmost values; false when it is none, or cannot be done.
bool Combine(unsigned char operation, Values &values) noexcept
{
    std::uintptr_t const b = values.Pop();
    std::uintptr_t const a = values.Pop();
    auto const signedA = static_cast<std::intptr_t>(a);
    auto const signedB = static_cast<std::intptr_t>(b);
    constexpr unsigned Bits = 8 * sizeof a;
    switch (operation)
    {
    case And:
        values.Push(a & b);
        return true;
    case Divide:
        if (b == 0)
            return false;
        // By -1 not as it stands: the quotient of the smallest number has no place.
        values.Push(signedB == -1 ? 0 - a : static_cast<std::uintptr_t>(signedA / signedB));
        return true;
    case Minus:
        values.Push(a - b);
        return true;
    case Modulo:
        if (b == 0)
            return false;
        values.Push(a % b);
        return true;
    case Multiply:
        values.Push(a * b);
        return true;
    case Or:
        values.Push(a | b);
        return true;
    case Plus:
        values.Push(a + b);
        return true;
    case ShiftLeft:
        values.Push(b < Bits ? a << b : 0);
        return true;
    case ShiftRight:
        values.Push(b < Bits ? a >> b : 0);
        return true;
    case ShiftRightArithmetic:
        values.Push(static_cast<std::uintptr_t>(signedA >> (b < Bits ? b : Bits - 1)));
        return true;
    case Xor:
        values.Push(a ^ b);
        return true;
    case Equal:
        values.Push(a == b);
        return true;
    case GreaterOrEqual:
        values.Push(signedA >= signedB);
        return true;
    case Greater:
        values.Push(signedA > signedB);
        return true;
    case LessOrEqual:
        values.Push(signedA <= signedB);
        return true;
    case Less:
        values.Push(signedA < signedB);
        return true;
    case NotEqual:
        values.Push(a != b);
        return true;
    default:
        return false;
    }
}

/// The number behind an operation that pushes it; false when it does not.
bool ReadConstant(unsigned char operation, TableReader &code, std::uintptr_t &value) noexcept
{
    auto const extended = [](std::int64_t number) { return static_cast<std::uintptr_t>(number); };
    switch (operation)
    {
    case Constant1u:
        value = code.Read<std::uint8_t>();
        return true;
    case Constant1s:
        value = extended(code.Read<std::int8_t>());
        return true;
    case Constant2u:
        value = code.Read<std::uint16_t>();
        return true;
    case Constant2s:
        value = extended(code.Read<std::int16_t>());
        return true;
    case Constant4u:
        value = code.Read<std::uint32_t>();
        return true;
    case Constant4s:
        value = extended(code.Read<std::int32_t>());
        return true;
    case Constant8u:
    case Constant8s:
        value = code.Read<std::uint64_t>();
        return true;
    case ConstantUnsigned:
        value = code.ReadUnsigned();
        return true;
    case ConstantSigned:
        value = extended(code.ReadSigned());
        return true;
    default:
        value = static_cast<std::uintptr_t>(operation - Literal0);
        return operation >= Literal0 && operation <= Literal31;
    }
}

/// An operation that only moves values of the stack; false when it does not.
bool Rearrange(unsigned char operation, TableReader &code, Values &values) noexcept
{
    switch (operation)
    {
    case Duplicate:
        values.Push(values.At(0));
        return true;
    case Drop:
        values.Pop();
        return true;
    case Over:
        values.Push(values.At(1));
        return true;
    case Pick:
        values.Push(values.At(code.Read<std::uint8_t>()));
        return true;
    case Swap:
    {
        std::uintptr_t const top = values.Pop();
        std::uintptr_t const second = values.Pop();
        values.Push(top);
        values.Push(second);
        return true;
    }
    case Rotate:
    {
        std::uintptr_t const top = values.Pop();
        std::uintptr_t const second = values.Pop();
        std::uintptr_t const third = values.Pop();
        values.Push(top);
        values.Push(third);
        values.Push(second);
        return true;
    }
    default:
        return false;
    }
}

/// An operation on the topmost value; false when it is none, or cannot be done.
bool Change(unsigned char operation, TableReader &code, OwnMemory &memory, Values &values) noexcept
{
    std::uintptr_t value = values.At(0);
    switch (operation)
    {
    case Dereference:
        if (!memory.Read(value, value))
            return false;
        break;
    case Absolute:
        value = static_cast<std::intptr_t>(value) < 0 ? 0 - value : value;
        break;
    case Negate:
        value = 0 - value;
        break;
    case Not:
        value = ~value;
        break;
    case PlusConstant:
        value += code.ReadUnsigned();
        break;
    default:
        return false;
    }
    values.Pop();
    values.Push(value);
    return true;
}

} // namespace

bool EvaluateExpression(RegisterRule const &expression, Registers const &registers, std::uintptr_t initial,
                        OwnMemory &memory, std::uintptr_t &value) noexcept
{
    constexpr int MaxOperations = 1000; // expressions can branch backwards, and so go on for ever
    TableReader code(expression.expression, expression.expression + expression.offset);
    Values values;
    values.Push(initial);
    for (int i = 0; i < MaxOperations && !code.IsAtEnd() && !values.HasFailed(); ++i)
    {
        auto const operation = code.Read<unsigned char>();
        bool const isBaseRegister = operation >= BaseRegister0 && operation <= BaseRegister31;
        std::uintptr_t result = 0;
        if (ReadConstant(operation, code, result))
            values.Push(result);
        else if (isBaseRegister || operation == BaseRegister)
        {
            std::uint64_t const number = isBaseRegister ? operation - BaseRegister0 : code.ReadUnsigned();
            if (number >= registers.size())
                return false;
            values.Push(registers[number] + static_cast<std::uintptr_t>(code.ReadSigned()));
        }
        else if (operation == Skip || operation == Branch)
        {
            auto const distance = code.Read<std::int16_t>();
            if (operation == Skip || values.Pop() != 0)
                code.Skip(distance);
        }
        else if (operation != NoOperation && !Rearrange(operation, code, values) &&
                 !Change(operation, code, memory, values) && !Combine(operation, values))
            return false;
    }
    value = values.Pop();
    return code.IsAtEnd() && !code.HasFailed() && !values.HasFailed();
}

} // namespace vansys::detail
