#!/usr/bin/env bash
# Usage: tests/exports/self_test.sh
#
# Shows that check.sh accepts a library that exports what its header declares, and finds each fault that is
# planted in it. Takes the variables that check.sh takes, and
#   INCLUDE, SUFFIX, MAP     the folder of the public headers, the ending of shared libraries, and the version
#                            script for the linker, empty where there is none
set -euo pipefail

[[ ${1-} != --help ]] || { sed -n '2,/^[^#]\|^$/s/^# \{0,1\}//p' "$0" && exit 0; }
: "${CXX:?} ${CXXFLAGS-} ${INCLUDE:?} ${SUFFIX:?} ${MAP-}"
here=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd -P)
work=$(mktemp -d)
trap 'rm -rf -- "$work"' EXIT
library=$work/sample$SUFFIX
check_flags="$CXXFLAGS -I$INCLUDE"

# Builds the sample with the macros given as arguments.
build()
{
    local flags=(-std=c++20 -O1 -shared -I "$INCLUDE" -DVANSYS_BUILDING_LIBRARY)
    flags+=(-fvisibility=hidden -fvisibility-inlines-hidden)
    [[ $SUFFIX == .dll ]] || flags+=(-fPIC)
    [[ -z $MAP ]] || flags+=("-Wl,--version-script=$MAP")
    # The flags are a list of words.
    # shellcheck disable=SC2086
    "$CXX" $CXXFLAGS "${flags[@]}" "${@/#/-D}" "$here/sample/Sample.cpp" -o "$library"
}

check()
{
    CXXFLAGS=$check_flags "$here/check.sh" "$library" "$here/sample" >"$work/report" 2>&1
}

build
check || { cat -- "$work/report" && printf 'FAILED: a library without faults is refused\n' && exit 1; }

while IFS='|' read -r fault expected; do
    # What is missing is used nowhere, so that the sample links all the same.
    build "$fault"
    ! check || { printf 'FAILED: not found: %s\n' "$fault" && exit 1; }
    grep -qxF -- "$expected" "$work/report" ||
        { cat -- "$work/report" && printf 'FAILED: %s not reported as %s\n' "$fault" "$expected" && exit 1; }
    printf 'found: %s\n' "$fault"
done <<'END'
MISSING_FUNCTION|missing: sample::Free(3) is declared 1 times and exported 0 times
MISSING_OVERLOAD|missing: sample::Base::Overload(1) is declared 2 times and exported 1 times
MISSING_VARIABLE|missing: sample::s_count is declared 1 times and exported 0 times
LEAKED_FUNCTION|leaked: sample::NotInAnyHeader()
LEAKED_OVERLOAD|leaked: sample::Free(3) is declared 1 times and exported 2 times
LEAKED_CLASS|leaked: vtable for sample::NotInAnyHeader
END
