#!/usr/bin/env bash
# Usage: tests/package/run.sh
#
# Installs the library from a build folder, moves what was installed, and builds and runs the program in
# consumer/ against it: found by CMake, and found by pkg-config. ctest runs this and sets what it needs:
#   BUILD_DIR, VERSION            the build folder, and the version of the library in it
#   CMAKE, CMAKE_GENERATOR        the cmake program, and what it generates
#   CXX, CXXFLAGS                 the compiler, and flags of the build that a host must use too
set -euo pipefail

[[ ${1-} != --help ]] || { sed -n '2,/^[^#]\|^$/s/^# \{0,1\}//p' "$0" && exit 0; }
: "${BUILD_DIR:?} ${VERSION:?} ${CMAKE:?} ${CMAKE_GENERATOR:?} ${CXX:?} ${CXXFLAGS-}"
export CMAKE_GENERATOR CXX CXXFLAGS
# Folders that the developer's own environment names must not be what the consumer finds.
unset CMAKE_PREFIX_PATH vansys_ROOT vansys_DIR LD_LIBRARY_PATH CPLUS_INCLUDE_PATH LIBRARY_PATH DESTDIR

consumer=$(CDPATH='' cd -- "$(dirname -- "$0")/consumer" && pwd -P)
work=$(mktemp -d)
trap 'rm -rf -- "$work"' EXIT
installed=$work/installed
prefix=$work/moved/here

"$CMAKE" --install "$BUILD_DIR" --prefix "$installed" >"$work/install.log" ||
    { cat -- "$work/install.log" && exit 1; }
mkdir -- "${prefix%/*}"
mv -- "$installed" "$prefix"

printf '== no path of this machine in the package files\n'
mapfile -t package_files < <(find "$prefix" -name '*.cmake' -o -name '*.pc')
((${#package_files[@]} >= 4)) || { printf 'package files are missing: %s\n' "${package_files[*]}" && exit 1; }
for path in "$work" "$BUILD_DIR" "${consumer%/tests/*}"; do
    ! grep -nF -- "$path" "${package_files[@]}" || exit 1
done

printf '== find_package\n'
"$CMAKE" -S "$consumer" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DVANSYS_VERSION="$VERSION" \
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
"$CMAKE" --build "$work/cmake"
"$work/cmake/consumer"

printf '== pkg-config\n'
PKG_CONFIG_LIBDIR=$(dirname -- "$(find "$prefix" -name vansys.pc)")
export PKG_CONFIG_LIBDIR
pkg-config --exact-version="$VERSION" vansys
# The flags are lists of words.
# shellcheck disable=SC2046,SC2086
"$CXX" -std=c++17 $CXXFLAGS $(pkg-config --cflags vansys) "$consumer/main.cpp" $(pkg-config --libs vansys) \
    -o "$work/consumer"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir vansys) "$work/consumer"
