#!/usr/bin/env bash
# Usage: tests/package/run.sh install|cpack
#
# Installs the library from a build folder, or has cpack make a package of it and unpacks that; moves it to
# another place, and builds and runs the program in consumer/ against it: found by CMake, and found by
# pkg-config. Ends with status 77 when a tool is missing that cpack needs. ctest runs this and sets:
#   BUILD_DIR, VERSION            the build folder, and the version of the library in it
#   CMAKE, CPACK                  the programs
#   CMAKE_GENERATOR               what cmake generates
#   CXX, CXXFLAGS                 the compiler, and flags of the build that a host must use too
# and for Windows also:
#   TOOLCHAIN                     the toolchain file
#   EMULATOR                      what runs a Windows program
#   OBJDUMP                       what lists the DLLs that a program needs
set -euo pipefail

[[ ${1-} != --help ]] || { sed -n '2,/^[^#]\|^$/s/^# \{0,1\}//p' "$0" && exit 0; }
: "${BUILD_DIR:?} ${VERSION:?} ${CMAKE:?} ${CPACK:?} ${CMAKE_GENERATOR:?} ${CXX:?} ${CXXFLAGS-}"
toolchain=${TOOLCHAIN-}
[[ -z $toolchain ]] || : "${EMULATOR:?} ${OBJDUMP:?}"
export CMAKE_GENERATOR CXX CXXFLAGS
# Folders that the developer's own environment names must not be what the consumer finds.
unset CMAKE_PREFIX_PATH vansys_ROOT vansys_DIR LD_LIBRARY_PATH CPLUS_INCLUDE_PATH LIBRARY_PATH DESTDIR

consumer=$(CDPATH='' cd -- "$(dirname -- "$0")/consumer" && pwd -P)
work=$(mktemp -d)
trap 'rm -rf -- "$work"' EXIT
prefix=$work/moved/here
mkdir -- "${prefix%/*}"

fail()
{
    printf 'FAILED: %s\n' "$*"
    exit 1
}

# Runs a command, whose output matters only if it fails.
quietly()
{
    "$@" >"$work/log" 2>&1 || { cat -- "$work/log" && fail "$1"; }
}

install_library()
{
    quietly "$CMAKE" --install "$BUILD_DIR" --prefix "$work/installed"
    mv -- "$work/installed" "$prefix"
}

# Puts what is in the package that cpack makes into $prefix.
unpack_package()
{
    local tool packages depends
    if [[ -z $toolchain ]]; then
        for tool in dpkg-deb dpkg-shlibdeps file; do
            command -v "$tool" >/dev/null || { printf 'skipped: %s is not installed\n' "$tool" && exit 77; }
        done
    fi
    quietly "$CPACK" --config "$BUILD_DIR/CPackConfig.cmake" -B "$work/packages"
    packages=("$work/packages"/vansys[-_]"$VERSION"*.*)
    ((${#packages[@]} == 1)) || fail "more than one package: ${packages[*]}"
    printf '== %s\n' "${packages[0]##*/}"

    mkdir -- "$work/unpacked"
    if [[ $toolchain ]]; then
        (cd -- "$work/unpacked" && quietly "$CMAKE" -E tar xf "${packages[0]}")
        mv -- "$work/unpacked/vansys-$VERSION-win32" "$prefix"
        [[ -s $prefix/share/doc/vansys/LICENSE ]] || fail 'the licence is missing'
        { grep -q 'GCC RUNTIME LIBRARY EXCEPTION' "$prefix"/share/doc/vansys/runtime/* &&
            grep -q winpthreads "$prefix"/share/doc/vansys/runtime/* &&
            grep -q 'UNICODE, INC. LICENSE' "$prefix"/share/doc/vansys/runtime/*; } ||
            fail 'the licences of the run-time DLLs are missing'
    else
        depends=$(dpkg-deb --field "${packages[0]}" Depends)
        [[ $depends == *libc6* && $depends == *libstdc++6* && $depends == *libicu* ]] || fail "the package depends on: $depends"
        dpkg-deb --extract "${packages[0]}" "$work/unpacked"
        mv -- "$work/unpacked/usr" "$prefix"
        [[ -s $prefix/share/doc/vansys/copyright ]] || fail 'the licence is missing'
    fi
}

# Fails unless each DLL that is needed is installed or, as the compiler has an import library for it, a part of
# Windows. The emulator finds more DLLs than a host has, so running the program does not show this.
check_dlls()
{
    local dll part
    while IFS= read -r dll; do
        part=${dll,,}
        [[ -f $prefix/bin/$dll || $("$CXX" -print-file-name="lib${part%.dll}.a") == */* ]] ||
            fail "$dll is needed and not installed"
    done < <("$OBJDUMP" -p "$@" | sed -n 's/.*DLL Name: //p' | sort -u)
}

# Fails unless the symbol map beside the library, which may be stripped, and the one that the host's program got
# belong to them.
check_symbol_maps()
{
    local make_vsym
    make_vsym=$(dirname -- "$(find "$prefix" -name vansysConfig.cmake)")/make-vsym
    "$make_vsym" --check "$prefix/bin/vansys.dll" || fail 'the symbol map of the library'
    "$make_vsym" --check "$work/cmake/consumer.exe" || fail 'the symbol map of the program'
}

# Runs the program, given without suffix, with the library at hand.
run_consumer()
{
    if [[ $toolchain ]]; then
        check_dlls "$1.exe" "$prefix"/bin/*.dll
        # Windows looks for DLLs beside the program.
        cp -- "$prefix"/bin/*.dll "${1%/*}"
        "$EMULATOR" "$1.exe"
    else
        LD_LIBRARY_PATH=${2-} "$1"
    fi
}

case ${1-} in
install) install_library ;;
cpack) unpack_package ;;
*) fail "neither install nor cpack: ${1-}" ;;
esac

printf '== no path of this machine in the package files\n'
mapfile -t package_files < <(find "$prefix" -name '*.cmake' -o -name '*.pc')
((${#package_files[@]} >= 4)) || fail "package files are missing: ${package_files[*]}"
for path in "$work" "$BUILD_DIR" "${consumer%/tests/*}"; do
    ! grep -nF -- "$path" "${package_files[@]}" || fail "found: $path"
done

printf '== find_package\n'
options=(-DVANSYS_VERSION="$VERSION" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)
if [[ $toolchain ]]; then
    # A cross build looks for packages in the folders of its toolchain only, unless it is told where one is.
    options+=(-DCMAKE_TOOLCHAIN_FILE="$toolchain" -Dvansys_DIR="$prefix/lib/cmake/vansys")
else
    options+=(-DCMAKE_PREFIX_PATH="$prefix")
fi
"$CMAKE" -S "$consumer" -B "$work/cmake" "${options[@]}"
"$CMAKE" --build "$work/cmake"
run_consumer "$work/cmake/consumer"
[[ -z $toolchain ]] || check_symbol_maps

printf '== pkg-config\n'
PKG_CONFIG_LIBDIR=$(dirname -- "$(find "$prefix" -name vansys.pc)")
export PKG_CONFIG_LIBDIR
pkg-config --exact-version="$VERSION" vansys
mkdir -- "$work/pkg-config"
# The flags are lists of words.
# shellcheck disable=SC2046,SC2086
"$CXX" -std=c++17 $CXXFLAGS $(pkg-config --cflags vansys) "$consumer/main.cpp" $(pkg-config --libs vansys) \
    -o "$work/pkg-config/consumer${toolchain:+.exe}"
run_consumer "$work/pkg-config/consumer" "$(pkg-config --variable=libdir vansys)"
