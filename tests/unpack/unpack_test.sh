#!/usr/bin/env bash
# Usage: unpack_test.sh UNPACK
#
# Gives the program UNPACK a list of good names, of names that are no text, and of hostile ones.
set -euo pipefail
export LC_ALL=C

unpack=$(realpath -- "$1")
work=$(mktemp -d)
trap 'rm -rf -- "$work"' EXIT
cd -- "$work"

fail()
{
    printf 'FAILED: %s\n' "$*"
    exit 1
}

list=$'good\tone\nsub/folder\\name.txt\ttwo two\n../out\tbad\nC:out\tbad\n/out\tbad\nnul\tbad\ndots.\tbad\n'
list+=$'Latin 1 \xe9\tthree\ncut \xc3/\xf0\x9f\x98\t\n'
mkdir base
status=0
printf '%s' "$list" | "$unpack" 'base' >out || status=$?
((status == 1)) || fail "status $status"
diff out - <<END || fail 'output'
good: 3 bytes
sub/folder\\name.txt: 7 bytes
../out: SafeJoin: the path leads upwards.
C:out: SafeJoin: the path begins in the current folder of a drive.
/out: SafeJoin: the path has a root directory.
nul: SafeJoin: a name is that of a device.
dots.: SafeJoin: a name ends with a dot or a blank.
Latin 1 $(printf '\xe9'): 5 bytes
cut $(printf '\xc3/\xf0\x9f\x98'): 0 bytes
END
[[ $(ls -A) == $'base\nout' ]] || fail "$(ls -A)"
[[ $(cat base/sub/folder/name.txt) == 'two two' && $(cat base/$'Latin 1 \xe9') == three ]] || fail 'content'
[[ -f base/$'cut \xc3'/$'\xf0\x9f\x98' ]] || fail 'names'
echo passed
