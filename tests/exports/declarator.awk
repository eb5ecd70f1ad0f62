# Functions that bring a declarator of a header and a demangled symbol into one form. It leaves the types out,
# because a header names them as it likes (TCodeUnit, std::string) and a symbol as the compiler resolved them:
#     TStringCore::compareUnits(2) const

function trim(text)
{
    sub(/^[ \t]+/, "", text)
    sub(/[ \t]+$/, "", text)
    return text
}

# The position of the first parenthesis that is not inside template arguments; 0 when there is none.
function first_parenthesis(text,    i, c, angles)
{
    for (i = 1; i <= length(text); ++i)
    {
        c = substr(text, i, 1)
        if (c == "<")
            ++angles
        else if (c == ">")
            --angles
        else if (c == "(" && angles == 0)
            return i
    }
    return 0
}

# "(2) const" for a text that begins with a list of two parameters.
function parameters(text,    i, c, depth, count, list)
{
    for (i = 1; i <= length(text); ++i)
    {
        c = substr(text, i, 1)
        if (c ~ /[(<{[]/)
            ++depth
        else if (c ~ /[])>}]/ && --depth == 0)
            break
        else if (c == "," && depth == 1)
            ++count
    }
    list = trim(substr(text, 2, i - 2))
    return "(" (list == "" || list == "void" ? 0 : count + 1) ")" \
        (substr(text, i + 1) ~ /^ *const([^A-Za-z0-9_]|$)/ ? " const" : "")
}

# The form of a function. Before the name, a declaration in a header has a return type and more; a symbol has
# nothing there but the scopes, which belong to the name.
function function_form(text, is_symbol,    name, rest, at)
{
    gsub(/\[abi:[a-z0-9]+\]/, "", text)
    if (match(text, /(^|[^A-Za-z0-9_])operator[^A-Za-z0-9_]/))
    {
        at = index(substr(text, RSTART), "operator") + RSTART - 1
        name = is_symbol ? substr(text, 1, at - 1) : ""
        rest = trim(substr(text, at + length("operator")))
        if (rest ~ /^\(\)/)
            at = 3
        else if (rest ~ /^[A-Za-z_:]/)
            at = first_parenthesis(rest)
        else
            at = index(rest, "(")
        # A conversion is named after a type.
        name = name "operator " (rest ~ /^[A-Za-z_:]/ ? "type" : trim(substr(rest, 1, at - 1)))
        return name parameters(substr(rest, at))
    }
    at = first_parenthesis(text)
    name = trim(substr(text, 1, at - 1))
    if (!is_symbol && match(name, /[A-Za-z0-9_:~]+$/))
        name = substr(name, RSTART)
    return name parameters(substr(text, at))
}
