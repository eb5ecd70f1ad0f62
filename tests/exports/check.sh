#!/usr/bin/env bash
# Usage: tests/exports/check.sh LIBRARY FOLDER
#
# Compares what a shared library (.so or .dll) exports with what the headers in a folder mark with VANSYS_API,
# and prints the number of exported entry points. Fails when the library does not export something that is
# marked and not inline, or exports anything else. Functions are compared by their qualified name, number of
# parameters and const; of overloads that agree in these, by how many they are.
#
#   CXX, CXXFLAGS            the compiler that built the library, and flags; it preprocesses the headers
#   NM, OBJDUMP, CXXFILT     the programs that read the library
set -euo pipefail
export LC_ALL=C

[[ ${1-} != --help ]] || { sed -n '2,/^[^#]\|^$/s/^# \{0,1\}//p' "$0" && exit 0; }
: "${CXX:?} ${CXXFLAGS-} ${NM:?} ${OBJDUMP:?} ${CXXFILT:?}"
library=${1:?}
folder=$(CDPATH='' cd -- "${2:?}" && pwd -P)
here=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd -P)
work=$(mktemp -d)
trap 'rm -rf -- "$work"' EXIT

# The flags are a list of words.
# shellcheck disable=SC2086
find "$folder" -name '*.h' -printf '#include "%p"\n' | sort |
    "$CXX" $CXXFLAGS -std=c++17 -I "${folder%/*}" -x c++ -E - |
    awk -v folder="$folder" -f "$here/declarator.awk" -f "$here/declared.awk" >"$work/declared"

elf=
case $library in
*.dll)
    "$OBJDUMP" -p "$library" |
        awk '/^\[Ordinal\/Name Pointer\] Table/ { inside = 1; next }
             !NF { inside = 0 }
             inside && /^[ \t]*\[/ { print $NF }'
    ;;
*)
    elf=1
    "$NM" -D --defined-only --format=posix "$library" | awk '{ sub(/@.*/, "", $1); print $1 }'
    ;;
esac >"$work/symbols"

# Some functions have more than one symbol, as constructors have; all demangle to the same text.
"$CXXFILT" -n <"$work/symbols" | sort -u >"$work/exported"
awk -v library="${library##*/}" -v symbols="$(wc -l <"$work/symbols")" -v elf="$elf" \
    -f "$here/declarator.awk" -f "$here/compare.awk" "$work/declared" "$work/exported"
