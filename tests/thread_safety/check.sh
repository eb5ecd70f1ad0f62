#!/usr/bin/env bash
# Usage: tests/thread_safety/check.sh
#
# Compiles sample.cpp, which must pass, and each of its faults, which must not, with Clang's thread-safety analysis.
# Exits with status 77 where there is no clang++.
set -euo pipefail

[[ ${1-} != --help ]] || { sed -n '2,/^[^#]\|^$/s/^# \{0,1\}//p' "$0" && exit 0; }
here=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd -P)
sample=$here/sample.cpp
command -v clang++ >/dev/null || { printf 'skipped: clang++ is not installed\n' && exit 77; }

analyse()
{
    clang++ -std=c++17 -I "$here/../../vansys/public" -fsyntax-only -Wthread-safety -Werror -DFAULT="$1" "$sample" 2>&1
}

status=0
findings=$(analyse 0) || { printf 'without a fault:\n%s\n' "$findings" && status=1; }

count=0
while IFS=$'\t' read -r fault expected; do
    count=$((count + 1))
    if findings=$(analyse "$fault"); then
        printf 'fault %s is not found\n' "$fault" && status=1
    elif [[ $findings != *"$expected"* ]]; then
        printf 'fault %s: instead of "%s":\n%s\n' "$fault" "$expected" "$findings" && status=1
    fi
done < <(sed -n 's,^#.* FAULT [=!]= \([0-9]*\) // ,\1\t,p' "$sample")
((count)) || { printf '%s has no faults\n' "$sample" && status=1; }
((status)) || printf '%s faults are found\n' "$count"
exit "$status"
