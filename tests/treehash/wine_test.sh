#!/usr/bin/env bash
# Usage: wine_test.sh RUN_WINE TREEHASH.exe
#
# Runs the Windows program TREEHASH.exe, by RUN_WINE, over the sources of this project and over files with
# difficult names. Coreutils of the building machine say what must come out, to the byte. Each start of Wine
# takes about a second, so there are few of them.
set -euo pipefail
export LC_ALL=C

(($# == 2)) || {
    sed -n '2,6s/^# \{0,1\}//p' "$0" >&2
    exit 2
}
treehash=("$(realpath -- "$1")" "$(realpath -- "$2")")
project=$(realpath -- "$(dirname -- "$0")/../..")
. "$project/tests/treehash/harness.sh"

# Prints what the manifest of a folder must be.
manifest_of()
{
    find "$1" -type f -print0 | sort -z | xargs -0 "${2-sha256}sum" --
}

# child_of PID: prints the last of the processes that it has started, one by the other.
child_of()
{
    local pid=$1 children
    while children=$(<"/proc/$pid/task/$pid/children") && [[ -n $children ]]; do
        pid=${children%% *}
    done
    printf '%s\n' "$pid"
}

# The names are such as Windows cannot have without the extended prefix, or has in other encodings.
make_tree()
{
    local name folder=tree/deep
    mkdir tree
    cp -R "$project/vansys" "$project/examples" tree
    mkdir tree/names tree/names/ünï
    for name in é $'e\xcc\x81' '日本 語.txt' 😀 ünï/é \
        -dash -- ' leading space' 'trailing space ' 'two  spaces' 'ends in a dot.' '#hash' nul con.txt A a-b; do
        printf '%s' "$name" >"tree/names/$name"
    done
    while ((${#folder} < 400)); do
        folder+=/a-name-of-which-many-make-a-path-that-is-too-long
    done
    mkdir -p "$folder"
    echo text >"$folder/file"
    ln -s .. tree/deep/loop
    : >tree/empty
    head -c 131072 /dev/urandom >tree/one_buffer
    head -c 5000000 /dev/urandom >tree/large
}

test_manifest()
{
    make_tree
    expect_status 0 "${treehash[@]}" tree
    expect_same err /dev/null
    manifest_of tree >expected
    expect_same out expected

    local algorithm
    for algorithm in sha1 sha224 sha384 sha512; do
        expect_status 0 "${treehash[@]}" -a "$algorithm" -o "$algorithm.txt" tree
        expect_same out /dev/null
        manifest_of tree "$algorithm" >expected
        expect_same "$algorithm.txt" expected
    done
    expect_status 0 sha1sum --check --strict --quiet sha1.txt
}

test_verification()
{
    mkdir verify verify/é
    local name names=(good é/corrupted missing) digest
    for name in "${names[@]}"; do
        echo right >"verify/$name"
    done
    manifest_of verify | sed 's/$/\r/' >verify.txt
    expect_status 0 "${treehash[@]}" -c verify.txt
    expect_line out "files: 3, matching: 3, different: 0, unreadable: 0, malformed lines: 0"

    # No file has a name that is not UTF-8, not even the one that has what a decoder puts in its place.
    digest=$(sha256sum <verify/good)
    echo right >$'verify/\xef\xbf\xbd'
    printf '%s  verify/\xff\n%s  verify\n' "${digest%% *}" "${digest%% *}" >>verify.txt
    echo wrong >verify/é/corrupted
    rm verify/missing
    expect_status 1 "${treehash[@]}" -c '.\verify.txt'
    printf '%s\n' "verify/missing: FAILED open or read" "verify/é/corrupted: FAILED" \
        $'verify/\xff: FAILED open or read' "verify: FAILED open or read" \
        "files: 5, matching: 1, different: 1, unreadable: 3, malformed lines: 0" >expected
    expect_same out expected
    expect_line err "treehash: verify: Is a directory"
    grep -qE '^treehash: verify/missing: .+[^[:space:]]$' err || fail "no reason for the missing file"
}

test_arguments()
{
    local name
    mkdir -p arguments/sub
    cd arguments
    echo text | tee nul ./- sub/日本 in_work >/dev/null
    ln -s sub link
    # A device that is named like a file, a folder that is none, and what is not there.
    # shellcheck disable=SC1003 # backslashes are meant
    expect_status 1 "${treehash[@]}" - '..\arguments\sub\日本' './/sub\' link "Z:$PWD/sub" Z:sub \
        "\\\\?\\Z:${PWD//\//\\}\\sub" nul in_work/ missing
    printf '%s\n' ./- ../arguments/sub/日本 ./sub/ link/ "Z:$PWD/sub/" Z:./sub/ "//?/Z:$PWD/sub/" |
        sed 's,/$,/日本,' >expected
    cut -d ' ' -f 3- ../out | sort | diff - <(sort expected) || fail "wrong names"
    for name in //./nul in_work/ missing; do
        grep -qF "treehash: $name: " ../err || fail "no message about $name"
    done
    cd ..
}

test_output_file()
{
    mkdir output
    echo text >output/file
    echo old >output/list.txt
    ln output/list.txt output/other_link
    manifest_of output | grep -v list.txt >expected

    # Written in its own tree, by a name with other letters for Windows alone.
    expect_status 0 "${treehash[@]}" -o 'OUTPUT\List.txt' output
    expect_same output/[Ll]ist.txt expected
    ! has_temporary output >/dev/null || fail "a temporary file is left"
    expect_status 1 "${treehash[@]}" -o nowhere/list output
    grep -q '^treehash: nowhere/list: Cannot create a temporary file in its folder: .' err ||
        fail "no message about a folder that does not exist"

    # An interrupt: the old text stays, and nothing else. Wine makes a Ctrl-C of the signal.
    mkdir interrupted
    truncate -s 16G endless
    echo old | tee interrupted/list >expected
    local pid status=0
    "${treehash[@]}" -o interrupted/list endless >out 2>err &
    pid=$!
    wait_until has_temporary interrupted
    kill -INT "$(child_of "$pid")"
    wait "$pid" || status=$?
    ((status == 0x3a)) || fail "exit status $status after Ctrl-C" # of 0xC000013A
    expect_same interrupted/list expected
    ! has_temporary interrupted >/dev/null || fail "a temporary file is left after Ctrl-C"
}

test_usage()
{
    expect_status 2 "${treehash[@]}" -x
    grep -q '^Usage: ' err || fail "no usage"
    expect_same out /dev/null
    ! grep -q $'\r' err || fail "carriage returns in the messages"
}

run_tests
