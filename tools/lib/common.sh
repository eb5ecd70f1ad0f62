# Shared by the scripts in tools/, which source it as their first act. Not to be run by itself.
# shellcheck shell=bash

# The checkout that the running script belongs to. The scripts work from any current directory.
root=$(CDPATH='' cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
# Read by the scripts that source this file.
# shellcheck disable=SC2034
jobs=${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}

# The name that messages use for the running script.
self=${0##*/}

# Prints the usage: the comment at the top of the running script.
usage()
{
    sed -n '2,/^[^#]\|^$/s/^# \{0,1\}//p' "$0"
}

# Ends the script: bad arguments are told apart from failures by exit status 2.
usage_error()
{
    printf '%s: %s\nTry "%s --help".\n' "$self" "$*" "$0" >&2
    exit 2
}

die()
{
    printf '%s: %s\n' "$self" "$*" >&2
    exit 1
}

# Whether the first argument is among the others.
is_one_of()
{
    local wanted=$1 candidate
    shift
    for candidate; do
        [[ $candidate != "$wanted" ]] || return 0
    done
    return 1
}

# For scripts without operands: answers --help and refuses everything else.
no_arguments()
{
    case ${1-} in
    '') ;;
    -h | --help) usage && exit 0 ;;
    *) usage_error "unexpected argument: $1" ;;
    esac
}

# Prints, one per line and relative to the root, the files of the project that match the given git patterns:
# tracked ones and new ones, but neither ignored nor deleted ones.
project_files()
{
    local file
    # A checkout may belong to another user than the one who runs the checks, as in a container.
    git -c safe.directory="$root" -C "$root" ls-files -co --exclude-standard -- "$@" | sort -u |
        while IFS= read -r file; do
            [[ ! -f $root/$file ]] || printf '%s\n' "$file"
        done
}
