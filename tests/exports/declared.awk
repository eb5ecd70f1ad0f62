# Reads preprocessed headers and prints what they promise: one line for each exported class, and for each
# function and variable that is exported and has to be defined in the library; constants need not be. To be
# used after declarator.awk, with the variable `folder` set: only text from headers in that folder counts.
#
# It knows as much of C++ as public headers need: a function that is not inline in the class body is taken to
# be defined in the library, and templates are taken to be defined in the header.

# Line markers of the preprocessor say which file the text that follows is from.
/^#/ {
    counts = index($0, "\"" folder "/") > 0
    next
}
counts {
    gsub(/__attribute__ *\(\((visibility\("default"\)|dllimport|dllexport)\)\)/, "VANSYS_API")
    gsub(/"([^"\\]|\\.)*"/, "\"\"")
    gsub(/'([^'\\]|\\.)'/, "0")
    source = source " " $0
}
END { split_into_statements() }

function split_into_statements(    i, c, statement, parentheses, body)
{
    for (i = 1; i <= length(source); ++i)
    {
        c = substr(source, i, 1)
        if (body > 0)
            body += (c == "{") - (c == "}")
        else if (parentheses > 0 || c !~ /[{};]/)
        {
            statement = statement c
            parentheses += (c == "(") - (c == ")")
        }
        else
        {
            statement = without_decoration(statement)
            if (c == "{" && !open_scope(statement))
                body = 1
            else if (c == "}")
                --level
            else if (c == ";")
                declare(statement)
            statement = ""
        }
    }
}

function without_decoration(text)
{
    gsub(/[ \t]+/, " ", text)
    gsub(/\[\[[^]]*\]\]/, "", text)
    gsub(/alignas ?\([^)]*\)/, "", text)
    gsub(/__attribute__ ?\(\([^()]*(\([^()]*\)[^()]*)*\)\)/, "", text)
    text = trim(text)
    while (text ~ /^(public|protected|private) ?:/)
        text = trim(substr(text, index(text, ":") + 1))
    return text
}

# Whether the text has the word.
function has(text, word)
{
    return text ~ ("(^|[^A-Za-z0-9_])" word "([^A-Za-z0-9_]|$)")
}

function qualified(name)
{
    return level > 0 && scope[level] != "" ? scope[level] "::" name : name
}

# Enters a namespace or class whose head is given. Returns 0 when what the brace opens is neither.
function open_scope(head,    name, i, depth, of_template)
{
    if (head ~ /^(inline )?namespace /)
    {
        sub(/^(inline )?namespace /, "", head)
        name = qualified(head)
        push(name, 0, 0)
        return 1
    }
    if (head ~ /^extern ""$/)
    {
        push(level > 0 ? scope[level] : "", 0, 0)
        return 1
    }
    if (head ~ /^template ?</)
    {
        for (i = index(head, "<"); i <= length(head); ++i)
        {
            depth += (substr(head, i, 1) == "<") - (substr(head, i, 1) == ">")
            if (depth == 0)
                break
        }
        # A full specialisation is a class like any other.
        of_template = head !~ /^template ?<>/
        head = trim(substr(head, i + 1))
    }
    if (head !~ /^(class|struct|union)( |$)/ || head ~ /\(/)
    {
        note_virtual(head)
        return 0
    }
    name = head
    sub(/^(class|struct|union) ?/, "", name)
    sub(/VANSYS_API /, "", name)
    if (match(name, /[^:]:[^:]/))
        name = substr(name, 1, RSTART)
    sub(/ final ?$/, "", name)
    push(qualified(trim(name)), has(head, "VANSYS_API"), of_template)
    if (is_exported[level])
        print "class " scope[level]
    return 1
}

function push(name, exported, of_template)
{
    of_template = of_template || (level > 0 && is_template[level])
    ++level
    scope[level] = name
    is_exported[level] = exported && !of_template
    is_template[level] = of_template
}

function note_virtual(text)
{
    if (level > 0 && is_exported[level] && (has(text, "virtual") || has(text, "override")))
        print "polymorphic " scope[level]
}

function declare(text,    in_class, is_inline)
{
    note_virtual(text)
    in_class = level > 0 && is_exported[level]
    if (!in_class && !has(text, "VANSYS_API") || level > 0 && is_template[level])
        return
    if (text ~ /^(using|typedef|friend|static_assert|template|extern template)([^A-Za-z0-9_]|$)/)
        return
    is_inline = has(text, "constexpr") || has(text, "inline")
    if (text ~ /\(/)
    {
        if (!is_inline && text !~ /= ?(default|delete|0)$/)
            print "function " qualified(function_form(text, 0))
    }
    else if (text !~ /^(class|struct|union|enum) / && (!in_class || has(text, "static")))
    {
        sub(/ ?(=|\[).*/, "", text)
        match(text, /[A-Za-z0-9_]+$/)
        print (is_inline ? "constant " : "variable ") qualified(substr(text, RSTART))
    }
}
