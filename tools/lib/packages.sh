# Installing Debian packages, for the setup scripts, which source this file after common.sh.
# shellcheck shell=bash

is_installed()
{
    # One line per installed architecture of the package.
    dpkg-query --show --showformat='${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed
}

as_root()
{
    if ((EUID == 0)); then
        "$@"
    else
        sudo "$@"
    fi
}

apt_get()
{
    # The lock time-out waits for the automatic upgrades that a machine starts after booting.
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 "$@" </dev/null
}

update_package_lists()
{
    # Without this mode, lists that could not be fetched are only a warning.
    local update=(apt_get -o APT::Update::Error-Mode=any update)
    "${update[@]}" && return
    printf '%s: updating the package lists failed; trying once more\n' "$self" >&2
    sleep 5
    "${update[@]}" ||
        printf '%s: updating failed again; going on with the lists that are here\n' "$self" >&2
}

install_packages()
{
    if ! command -v dpkg-query || ! command -v apt-get; then
        die "this is not Debian. Install the counterparts of these packages, then build with cmake: $*"
    fi >/dev/null

    local package missing=() unknown=()
    for package; do
        is_installed "$package" || missing+=("$package")
    done
    ((${#missing[@]})) || return 0

    ((EUID == 0)) || command -v sudo >/dev/null ||
        die "neither root nor sudo. Run as root: apt-get install ${missing[*]}"
    printf '%s: installing %s\n' "$self" "${missing[*]}"

    update_package_lists
    for package in "${missing[@]}"; do
        apt-cache show "$package" >/dev/null 2>&1 || unknown+=("$package")
    done
    ((!${#unknown[@]})) ||
        die "not in the package sources of this machine (Debian 12 has them): ${unknown[*]}"
    apt_get --no-install-recommends install "${missing[@]}" ||
        die "installing failed; the messages above say why"
}
