# What the tests of treehash have in common. Sourced; goes to an empty folder that is removed at the end.
# shellcheck shell=bash

work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$work"' EXIT
chmod 755 "$work" # for the unprivileged user
cd "$work" || exit
touch failures

# Counted in a file, so that a failure in a subshell is not lost.
fail()
{
    printf 'FAILED: %s\n' "$*" | tee -a "$work/failures"
}

# Runs a command and compares its exit status. What it prints goes to the files "out" and "err".
expect_status()
{
    local expected=$1 actual=0
    shift
    "$@" >"$work/out" 2>"$work/err" </dev/null || actual=$?
    ((actual == expected)) || fail "exit status $actual instead of $expected: $* ($(head -n 3 "$work/err"))"
}

# expect_line FILE LINE: the file has this line.
expect_line()
{
    grep -qxF -e "$2" "$work/$1" || fail "no line \"$2\" in: $(head -n 5 "$work/$1")"
}

expect_same()
{
    cmp "$1" "$2" >/dev/null 2>&1 || fail "$1 and $2 differ"
}

# Waits until a command succeeds. What it waits for takes no time worth mentioning.
wait_until()
{
    local attempts=2000
    until "$@" >/dev/null 2>&1; do
        ((--attempts)) || {
            fail "waited in vain: $*"
            return
        }
        sleep 0.01
    done
}

has_temporary()
{
    compgen -G "$1/.treehash-*"
}

# Runs all functions whose names begin with "test_", and fails when one of them does.
run_tests()
{
    local name failures_before
    for name in $(compgen -A function test_); do
        failures_before=$(wc -l <"$work/failures")
        "$name"
        (($(wc -l <"$work/failures") > failures_before)) || printf 'passed: %s\n' "$name"
    done
    [[ ! -s "$work/failures" ]]
}
