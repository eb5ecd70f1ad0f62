# Compares what the headers declare (first file, from declared.awk) with what the library exports (second
# file: demangled symbols, each once), and prints the differences. To be used after declarator.awk, with the
# variables `library` and `symbols` (their number) set for the summary, and `elf` set when typeinfo is
# exported by itself.

FNR == NR {
    what = $1
    name = substr($0, length($1) + 2)
    if (what == "class")
        is_class[name] = 1
    else if (what == "polymorphic")
        is_polymorphic[name] = 1
    else if (what == "constant")
        is_constant[name] = 1 # whether the compiler needs it in memory is its own affair
    else
    {
        ++declared[name]
        ++total[what]
    }
    next
}

# What the compiler adds to a class.
/^(typeinfo|typeinfo name|vtable|VTT) for / {
    what = substr($0, 1, index($0, " for ") - 1)
    name = substr($0, index($0, " for ") + 5)
    has_part[what, name] = 1
    if (!(name in is_class))
        leak($0)
    next
}
/^construction vtable for .*-in-/ {
    if (!(substr($0, index($0, "-in-") + 4) in is_class))
        leak($0)
    next
}
/^(non-virtual|virtual|covariant return) thunk to / {
    if (!(function_form(substr($0, index($0, " to ") + 4), 1) in declared))
        leak($0)
    next
}
{
    name = /\(/ ? function_form($0, 1) : $0
    if (name in is_constant)
        next
    ++exported[name]
    if (!(name in declared))
        leak($0)
}

END {
    if (total["function"] == 0)
        fail("no exported function was found in the headers")
    for (name in declared)
        if (exported[name] != declared[name])
            fail((exported[name] < declared[name] ? "missing: " : "leaked: ") name " is declared " \
                 declared[name] + 0 " times and exported " exported[name] + 0 " times")
    for (name in is_class)
    {
        # A program that catches or overrides in its own code uses the library's description of the class.
        if (name in is_polymorphic)
        {
            require("typeinfo", name)
            require("vtable", name)
        }
        else if (elf && name ~ /Exception$/)
            require("typeinfo", name)
        ++classes
    }
    printf "%s: %d exported entry points; in the headers: %d functions, %d variables, %d exported classes\n",
        library, symbols, total["function"], total["variable"], classes
    exit failed
}

function fail(message)
{
    print message
    failed = 1
}

function leak(symbol)
{
    fail("leaked: " symbol)
}

function require(part, name)
{
    if (!has_part[part, name])
        fail("missing: " part " for " name)
}
