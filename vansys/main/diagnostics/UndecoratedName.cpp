#include "main/diagnostics/UndecoratedName.h"

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

#include <cxxabi.h>

namespace vansys::detail
{

namespace
{

/// Longer ones before those that they begin with.
constexpr std::string_view Operators[] = {
    "()", "[]", "<=>", "<<=", ">>=", "->*", "<<", ">>", "<=", ">=", "==", "!=", "&&",
    "||", "++", "--",  "+=",  "-=",  "*=",  "/=", "%=", "^=", "&=", "|=", "->", "<",
    ">",  "=",  "!",   "+",   "-",   "*",   "/",  "%",  "^",  "&",  "|",  "~",  ",",
};

bool IsNameCharacter(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$';
}

/// Whether this word begins at `position`.
bool IsWordAt(std::string_view text, std::size_t position, std::string_view word) noexcept
{
    std::size_t const end = position + word.size();
    return text.substr(position, word.size()) == word &&
           (position == 0 || !IsNameCharacter(text[position - 1])) &&
           (end == text.size() || !IsNameCharacter(text[end]));
}

/// Where the punctuation at `position` that names an operator ends: it opens and closes nothing.
std::size_t EndOfOperator(std::string_view text, std::size_t position) noexcept
{
    for (std::string_view const punctuation : Operators)
        if (text.substr(position, punctuation.size()) == punctuation)
            return position + punctuation.size();
    return position;
}

} // namespace

std::string Undecorate(char const *symbol)
{
    if (symbol[0] != '_' ||
        symbol[1] != 'Z') // the demangler takes the name of a function of C for that of a type
        return symbol;
    constexpr int OutOfMemory = -1;
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const name(
        abi::__cxa_demangle(symbol, nullptr, nullptr, &status), &std::free);
    if (status == OutOfMemory)
        throw std::bad_alloc();
    return name ? name.get() : symbol;
}

std::string_view NameOnly(std::string_view undecorated) noexcept
{
    constexpr std::string_view Operator = "operator";
    constexpr std::string_view Anonymous = "(anonymous namespace)";
    constexpr std::string_view Deduced = "decltype";
    constexpr std::string_view Opening = "(<[{";
    constexpr std::string_view Closing = ")>]}";

    std::string_view const text = undecorated;
    std::size_t begin = 0;
    std::size_t end = text.size();
    std::size_t depth = 0;
    bool hasBegun = false; // no blank from here on ends the result
    for (std::size_t i = 0; i < text.size();)
    {
        if (text[i] == 'o' && IsWordAt(text, i, Operator))
        {
            hasBegun = hasBegun || depth == 0;
            i = EndOfOperator(text, i + Operator.size());
            continue;
        }
        if (text[i] == 'd' && IsWordAt(text, i, Deduced))
        {
            i += Deduced.size();
            while (i < text.size() && text[i] != '(')
                ++i;
            depth += i < text.size();
        }
        else if (text.substr(i, Anonymous.size()) == Anonymous)
            i += Anonymous.size() - 1;
        else if (Opening.find(text[i]) != std::string_view::npos)
        {
            // The last parameters are those of the function; others are those of what it is local to.
            if (text[i] == '(' && depth == 0)
            {
                end = i;
                hasBegun = true;
            }
            ++depth;
        }
        else if (Closing.find(text[i]) != std::string_view::npos)
            depth -= depth > 0 && text.substr(i - 1, 2) != "->";
        else if (text[i] == ' ' && depth == 0 && !hasBegun)
            begin = i + 1;
        ++i;
    }
    return text.substr(begin, end - begin);
}

} // namespace vansys::detail
