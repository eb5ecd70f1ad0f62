#!/usr/bin/env bash
# Usage: treehash_test.sh TREEHASH
#
# Runs the program TREEHASH on small trees, with coreutils as the second opinion.
set -euo pipefail
export LC_ALL=C

(($# == 1)) || {
    sed -n '2,4s/^# \{0,1\}//p' "$0" >&2
    exit 2
}
treehash=$(realpath -- "$1")
. "$(dirname -- "$0")/harness.sh"
algorithms=(sha1 sha224 sha256 sha384 sha512)
huge=16G # size of sparse files that no test waits for the end of
# How to run the program without the rights of root; empty when it is run so anyway.
unprivileged=()
((EUID != 0)) || unprivileged=(setpriv --reuid=65534 --regid=65534 --clear-groups)

# expect_names COMMAND... : the names in the manifest that the command prints are the lines of standard input.
expect_names()
{
    cat >"$work/expected"
    "$@" | cut -d ' ' -f 3- | diff - "$work/expected" || fail "wrong names: $*"
}

# has_open PID NAME
has_open()
{
    readlink "/proc/$1/fd/"* | grep -q "/$2\$"
}

# can_run_unprivileged SUBJECT: else says that the test of the subject is left out.
can_run_unprivileged()
{
    "${unprivileged[@]}" "$treehash" --help >/dev/null 2>&1 || {
        printf 'SKIPPED: %s (this needs a user other than root, and others cannot run %s)\n' "$1" "$treehash"
        return 1
    }
}

test_algorithms()
{
    mkdir sizes
    local size algorithm
    for size in 0 1 55 56 63 64 65 111 112 127 128 131071 131072 131073 400000; do
        head -c "$size" /dev/urandom >"sizes/$size"
    done
    for algorithm in "${algorithms[@]}"; do
        expect_status 0 "$treehash" -a "$algorithm" -o "$algorithm.txt" sizes
        expect_status 0 "${algorithm}sum" --check --strict --quiet "$algorithm.txt"
        expect_status 0 "$treehash" -c "$algorithm.txt"
        expect_line out "files: 15, matching: 15, different: 0, unreadable: 0, malformed lines: 0"
        expect_status 0 "$treehash" "-a$algorithm" -c "$algorithm.txt"
    done
    expect_status 0 "$treehash" sizes
    expect_same out sha256.txt
    expect_status 1 "$treehash" -a sha1 -c sha256.txt
    expect_line err "treehash: sha256.txt: Lists no files"
}

test_names()
{
    # shellcheck disable=SC1003 # a backslash is meant
    local names=(plain 'two  spaces' ' leading space' 'trailing space ' '*star' '#hash' -dash -- '\'
        'back\slash' '\n' $'line\nfeed' $'\n' $'carriage\rreturn' $'ends in\r' $'tab\t' $'bell\a'
        $'\\\n\r\\' $'Latin 1: \xe9' $'\xff\xfe' $'\xf0\x9f\x98\x80' $'\xf5\x80' $'cut \xc3')
    local name
    mkdir -p names
    for name in "${names[@]}"; do
        printf '%s' "$name" >"names/$name"
    done
    cd names

    # Byte for byte what coreutils writes, in the order of the shell's patterns; and each reads the other's.
    sha256sum -- * >../theirs
    sha256sum --binary -- * >../theirs_binary
    expect_status 0 "$treehash" -- *
    expect_same ../out ../theirs
    expect_status 0 "$treehash" -c ../theirs
    expect_line out "files: ${#names[@]}, matching: ${#names[@]}, different: 0, unreadable: 0, malformed lines: 0"
    expect_status 0 "$treehash" -c ../theirs_binary

    # The same names as folders.
    mkdir ../folders
    for name in "${names[@]}"; do
        mkdir "../folders/$name"
        cp -- "./$name" "../folders/$name/$name"
    done
    cd ../folders
    expect_status 0 "$treehash" -o ../folders.txt .
    expect_status 0 sha256sum --check --strict --quiet ../folders.txt
    expect_status 0 "$treehash" -c ../folders.txt

    # Failures are printed with the same escapes.
    rm -- $'line\nfeed/line\nfeed'
    printf x >$'\\/\\'
    expect_status 1 "$treehash" -c ../folders.txt
    expect_line out '\./line\nfeed/line\nfeed: FAILED open or read'
    expect_line err 'treehash: ./line\nfeed/line\nfeed: No such file or directory'
    expect_line out '\./\\/\\: FAILED'
    cd ..
}

test_walk()
{
    mkdir -p walk/a/b walk/empty
    touch walk/{a-b,a.b,a0,a/c,a/b/d,A} walk/a/b/.hidden ./-
    mkfifo walk/a/pipe
    ln -s ../a walk/a/loop
    ln -s a.b walk/link_to_file
    ln -s walk link_to_folder

    local below=(A a-b a.b a/b/.hidden a/b/d a/c a0)
    printf 'walk/%s\n' "${below[@]}" | expect_names "$treehash" walk
    printf 'walk/%s\n' "${below[@]}" | expect_names "$treehash" walk//
    printf './walk/%s\n' "${below[@]}" | expect_names "$treehash" .//walk/
    printf 'walk/%s\n' "${below[@]}" | expect_names "$treehash" walk/a0 walk/a walk walk/a0
    printf 'link_to_folder/%s\n' "${below[@]}" | expect_names "$treehash" link_to_folder
    echo walk/link_to_file | expect_names "$treehash" walk/link_to_file
    echo ./- | expect_names "$treehash" -

    expect_status 0 "$treehash" walk/empty
    expect_same out /dev/null
    expect_status 1 "$treehash" walk/a/pipe walk/a0
    expect_line err "treehash: walk/a/pipe: Not a regular file or a folder"
    expect_line out "$(sha256sum walk/a0)"
}

test_collation()
{
    mkdir collation
    touch collation/{z,ä,Ö,a,B,z1}
    printf 'collation/%s\n' B a z z1 Ö ä | expect_names "$treehash" collation
    printf 'collation/%s\n' a B z z1 ä Ö | expect_names "$treehash" -l sv collation
    printf 'collation/%s\n' a ä B Ö z z1 | expect_names "$treehash" -lde collation
    printf 'collation/%s\n' a ä B Ö z z1 | expect_names env LC_ALL=de_DE.UTF-8 "$treehash" -l '' collation

    # Long names, and names that are no text, have their places too.
    local long
    long=$(printf 'é%.0s' {1..120})
    touch collation/{"$long",f,$'\xff'}
    printf 'collation/%s\n' a ä B "$long" f Ö z z1 $'\xff' | expect_names "$treehash" -l de collation
}

test_unreadable_paths()
{
    mkdir partly
    echo text >partly/readable
    ln -s nowhere dangling
    expect_status 1 "$treehash" missing partly dangling partly/readable/
    expect_line err "treehash: missing: No such file or directory"
    expect_line err "treehash: dangling: No such file or directory"
    expect_line err "treehash: partly/readable/: Not a directory"
    expect_line out "$(sha256sum partly/readable)"

    can_run_unprivileged "files without read permission" || return 0
    echo text >partly/locked
    mkdir partly/locked_folder
    chmod 000 partly/locked partly/locked_folder
    expect_status 1 "${unprivileged[@]}" "$treehash" partly
    expect_line err "treehash: partly/locked: Permission denied"
    expect_line err "treehash: partly/locked_folder: Permission denied"
    expect_line out "$(sha256sum partly/readable)"
    chmod 700 partly/locked_folder
}

test_change_while_reading()
{
    truncate -s "$huge" shrinking
    local pid status=0
    "$treehash" shrinking >out 2>err &
    pid=$!
    wait_until has_open "$pid" shrinking
    : >shrinking
    wait "$pid" || status=$?
    ((status == 1)) || fail "exit status $status for a file that changes"
    expect_line err "treehash: shrinking: Changed while it was read"
    expect_same out /dev/null
}

test_verification_failures()
{
    mkdir verify
    echo right >verify/good
    echo right >verify/corrupted
    echo right >verify/missing
    "$treehash" -o verify.txt verify
    echo wrong >verify/corrupted
    rm verify/missing
    expect_status 1 "$treehash" -c verify.txt
    printf '%s\n' "verify/corrupted: FAILED" "verify/missing: FAILED open or read" \
        "files: 3, matching: 1, different: 1, unreadable: 1, malformed lines: 0" >expected
    expect_same out expected
    expect_line err "treehash: verify/missing: No such file or directory"

    # What takes the place of a file is no reason to wait or to read it.
    mkdir verify/missing
    rm verify/corrupted
    mkfifo verify/corrupted
    expect_status 1 "$treehash" -c verify.txt
    expect_line err "treehash: verify/missing: Is a directory"
    expect_line err "treehash: verify/corrupted: Not a regular file"

    expect_status 1 "$treehash" -c nowhere.txt
    expect_line err "treehash: nowhere.txt: No such file or directory"
    expect_status 1 "$treehash" -c /dev/null
    expect_line err "treehash: /dev/null: Lists no files"
}

test_manifest_lines()
{
    local digest number
    echo text >file
    digest=$(sha256sum <file)
    digest=${digest%% *}

    # What is accepted: capital digits, line ends of other systems, several algorithms, no last line feed.
    {
        printf '# comment\n\n\r\n%s  file\r\n%s *file\n' "${digest^^}" "$digest"
        sha512sum file
        sha1sum file
        printf '\\%s  file' "$digest"
    } >lines.txt
    expect_status 0 "$treehash" -c lines.txt
    expect_line out "files: 5, matching: 5, different: 0, unreadable: 0, malformed lines: 0"

    local malformed=(junk "$digest" "$digest " "$digest  " "$digest file" "$digest  " "${digest}0  file"
        "${digest:1}  file" "g${digest:1}  file" " $digest  file" "\\$digest  fi\\le" "\\$digest  file\\"
        "$digest"$'\t'" file" "\\\\$digest  file")
    {
        printf '%s  file\n' "$digest"
        printf '%s\n' "${malformed[@]}"
        printf '%s  fi\0le\n' "$digest"
        printf '%s  ' "$digest"
        head -c 300000 /dev/zero | tr '\0' x
    } >lines.txt
    expect_status 1 "$treehash" -c lines.txt
    for ((number = 2; number <= ${#malformed[@]} + 3; ++number)); do
        expect_line err "treehash: lines.txt:$number: Malformed line"
    done
    expect_line out \
        "files: 1, matching: 1, different: 0, unreadable: 0, malformed lines: $((${#malformed[@]} + 2))"
}

test_usage()
{
    expect_status 0 "$treehash" --help
    grep -q '^Usage: ' out || fail "no usage in the help"
    local arguments
    for arguments in "" "-a sha256" "-a md5 ." -a -o -c "-x ." --version "-c list ." "-c list -o x" "-c list -l sv"; do
        # shellcheck disable=SC2086 # several arguments
        expect_status 2 "$treehash" $arguments
        grep -q '^Usage: ' err || fail "no usage for: $arguments"
        expect_same out /dev/null
    done
}

test_output_file()
{
    mkdir output
    echo text >output/file
    echo old >output/list
    chmod 640 output/list
    ln -s list output/link

    # Written in its own tree, through a link, with the old permissions, and stable.
    expect_status 0 "$treehash" -o output/link output
    sha256sum output/file >expected
    expect_same output/list expected
    [[ -L output/link && $(stat -c %a output/list) == 640 ]] || fail "link or permissions are gone"
    expect_status 0 "$treehash" output -o output/list
    expect_same output/list expected

    # Other failures leave the lines that could be had.
    expect_status 1 "$treehash" -o output/list output missing
    expect_same output/list expected

    # What is no regular file is written to, not replaced.
    mkfifo pipe
    timeout 10 cat pipe >piped &
    expect_status 0 timeout 10 "$treehash" -o pipe output/file
    [[ -p pipe ]] || fail "the pipe was replaced"
    wait || true
    expect_same piped expected
    if can_run_unprivileged "writing to a full device"; then # root could damage it
        expect_status 1 "${unprivileged[@]}" "$treehash" -o /dev/full output/file
        expect_line err "treehash: /dev/full: No space left on device"
    fi
    local status=0
    "$treehash" output >/dev/full 2>err || status=$?
    ((status == 1)) || fail "exit status $status for a full standard output"
    expect_line err "treehash: standard output: No space left on device"

    expect_status 1 "$treehash" -o nowhere/list output
    expect_line err \
        "treehash: nowhere/list: Cannot create a temporary file in its folder: No such file or directory"
    expect_status 1 "$treehash" -o output output
    expect_line err "treehash: output: Is a directory"

    # A write that fails in the middle, and an interrupt: the old text stays, and nothing else.
    status=0
    (
        ulimit -f 0
        trap '' XFSZ
        exec "$treehash" -o output/list output
    ) 2>/dev/null || status=$?
    ((status == 1)) || fail "exit status $status for a write that fails"
    expect_same output/list expected
    ! has_temporary output >/dev/null || fail "a temporary file is left"

    truncate -s "$huge" endless
    local pid
    "$treehash" -o output/list endless >out 2>err &
    pid=$!
    wait_until has_temporary output
    kill -TERM "$pid"
    status=0
    wait "$pid" || status=$?
    ((status == 128 + 15)) || fail "exit status $status after a signal"
    expect_same output/list expected
    ! has_temporary output >/dev/null || fail "a temporary file is left"
}

test_progress()
{
    truncate -s 512M long
    expect_status 0 "$treehash" long
    expect_same err /dev/null

    command -v script >/dev/null || {
        echo "SKIPPED: the progress bar (no program called script to make a terminal)"
        return
    }
    script -qec "stty cols 100; '$treehash' -o long.txt long" terminal >/dev/null </dev/null
    grep -qE '\[#*\.*\] [0-9]+%  0/1 files  [0-9.]+ MiB/512\.0 MiB  [0-9.]+ [KMG]iB/s  [0-9:]+ left' terminal ||
        fail "no progress bar on a terminal: $(head -c 300 terminal | od -c | head -n 20)"
    grep -qE $'left *\r {99}\r' terminal || fail "the progress bar is not taken off the terminal"
    expect_same out long.txt
}

run_tests
