#include "main/diagnostics/FrameLine.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace vansys::detail
{

namespace
{

constexpr std::string_view HiddenSources[] = {
    "stackwalker.cpp",
    "tstackwalker.cpp",
    "memorytrackingcommunication.cpp",
    "tmemory.cpp",
};

/// Adds the number in upper-case hexadecimal digits, with zeros before it where it has fewer than `width`.
void AppendHex(std::string &text, std::uintptr_t number, std::size_t width)
{
    constexpr char Digits[] = "0123456789ABCDEF";
    std::array<char, 2 * sizeof number> buffer;
    std::size_t begin = buffer.size();
    do
    {
        buffer[--begin] = Digits[number % 16];
        number /= 16;
    } while (number != 0);
    std::size_t const count = buffer.size() - begin;
    text.append(count < width ? width - count : 0, '0').append(buffer.data() + begin, count);
}

void AppendDecimal(std::string &text, unsigned number)
{
    std::array<char, 3 * sizeof number> buffer;
    char *const begin = buffer.data();
    text.append(begin, std::to_chars(begin, begin + buffer.size(), number).ptr);
}

constexpr char ToLower(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualIgnoringCase(std::string_view text, std::string_view lowerCase) noexcept
{
    if (text.size() != lowerCase.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (ToLower(text[i]) != lowerCase[i])
            return false;
    return true;
}

} // namespace

void AppendFrameLine(std::string &text, FrameLine const &frame, FrameLineParts const &parts)
{
    if (parts.number)
    {
        text += "0x";
        AppendHex(text, frame.number, 8);
    }
    std::string_view module = frame.module;
    if (frame.file.empty())
    {
        if (module.empty())
            module = "(module name not available)";
        if (parts.address)
        {
            text += " 0x";
            AppendHex(text, frame.programCounter, 1);
            text += ' ';
        }
    }
    else
    {
        if (parts.file)
        {
            text += ' ';
            text += frame.file;
        }
        if (parts.lineNumber)
        {
            text += '(';
            AppendDecimal(text, frame.line);
            text += "): ";
        }
    }
    text += module;
    text += '!';
    text += frame.function.empty() ? std::string_view("(symbol not available)") : frame.function;
}

bool IsHiddenSource(std::string_view file) noexcept
{
    std::string_view const name = file.substr(file.find_last_of("/\\") + 1);
    for (std::string_view const hidden : HiddenSources)
        if (EqualIgnoringCase(name, hidden))
            return true;
    return false;
}

} // namespace vansys::detail
