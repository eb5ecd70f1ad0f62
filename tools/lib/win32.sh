# Where the things for 32-bit Windows are, and how Wine is called. Sourced after common.sh by the scripts that
# set them up and use them.
# shellcheck shell=bash
# shellcheck disable=SC2034

# Outside the checkout, so that only the first build on a machine pays for the dependencies.
win32_cache=${XDG_CACHE_HOME:-$HOME/.cache}/vansys/win32
# Links to what is in use. The first leads to include/, lib/ and bin/; the second to the folder of an i386
# Debian with Wine in it, or to the system's own wine program.
win32_dependencies=$win32_cache/dependencies
win32_wine=$win32_cache/wine

# Prints the prefix folder of a Wine. Each version has its own: Wine changes old ones to its liking.
wine_prefix()
{
    local target
    target=$(readlink -f -- "$1")
    if [[ -d $target ]]; then
        printf '%s\n' "$win32_cache/prefix-${target##*/}"
    else
        printf '%s\n' "$win32_cache/prefix-system"
    fi
}

# Sets wine_command to what runs a Wine, given as what the link leads to; the program is to follow.
set_wine_command()
{
    # File names and arguments with other than ASCII characters need a locale that has them.
    local locale=${LC_ALL:-${LC_CTYPE:-${LANG-}}} utf8=()
    [[ ${locale,,} == *utf*8* ]] || utf8=(-u LC_ALL LC_CTYPE=C.UTF-8)
    # No window may ever wait for a click; no installers for things that console programs do without.
    wine_command=(env -u DISPLAY -u WAYLAND_DISPLAY "${utf8[@]}"
        WINEPREFIX="$(wine_prefix "$1")" WINEARCH=win32 WINEDEBUG="${WINEDEBUG--all}"
        WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d')
    if [[ -d $1 ]]; then
        wine_command+=("$root/tools/lib/enter-i386-root" "$1" /usr/lib/wine/wine)
    else
        wine_command+=("$1")
    fi
}

# Creates the prefix of a Wine, once. The mark is set when Wine is through; without it, what is there is the
# rest of an interrupted attempt.
create_wine_prefix()
{
    local prefix
    prefix=$(wine_prefix "$1")
    [[ ! -e $prefix/vansys-complete ]] || return 0
    mkdir -p -- "$win32_cache"
    (
        flock 9
        [[ ! -e $prefix/vansys-complete ]] || exit 0
        rm -rf -- "$prefix"
        # Wine's server lives on in the background; it must not inherit the lock.
        set_wine_command "$1"
        timeout --kill-after=10 300 "${wine_command[@]}" wineboot --init \
            </dev/null >"$prefix.log" 2>&1 9>&- || exit
        touch -- "$prefix/vansys-complete"
    ) 9>"$prefix.lock"
}
