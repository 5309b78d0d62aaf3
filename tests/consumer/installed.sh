#!/bin/bash
# installed.sh BUILD WORK VERSION [CMAKE-OPTION...] -- COMPILER [EMULATOR...]: installs BUILD into a folder, and lets
# others find it there, by CMake and by pkg-config, after it was moved too.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
build=$1 work=$2 version=$3
shift 3
options=()
while [ "$1" != -- ]; do
    options+=("$1")
    shift
done
compiler=$2
shift 2
emulator=("$@")

fail() {
    echo "$*"
    exit 1
}

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/prefix"
prefix=$work/prefix
if grep -rIl -e "$work/first" -e "$build" "$prefix"; then
    fail "these know where they were built or installed"
fi

# Objects that were meant for optimization across sources are of no use to another compiler.
if LC_ALL=C readelf --section-headers --wide "$prefix/lib/libbci.a" | grep -F .gnu.lto_; then
    fail "libbci.a has intermediate code"
fi

cmake -G Ninja -S "$here/project" -B "$work/cmake" -D CMAKE_PREFIX_PATH="$prefix" -D BCI_EXPECTED_VERSION="$version" \
    "${options[@]}" >"$work/cmake.log"
cmake --build "$work/cmake" >>"$work/cmake.log" || fail "$(cat "$work/cmake.log")"

# No other library of that name is found instead.
pkg() {
    PKG_CONFIG_PATH='' PKG_CONFIG_LIBDIR=$prefix/lib/pkgconfig pkg-config "$@" bci
}
[ "$(pkg --modversion)" = "$version" ] || fail "pkg-config has another version: $(pkg --modversion)"
read -ra flags <<<"$(pkg --cflags)"
read -ra libraries <<<"$(pkg --libs)"
read -ra staticLibraries <<<"$(pkg --static --libs)"

for standard in 11=201103 20=202002; do
    number=${standard%=*} value=${standard#*=}
    "$here/runs.sh" "$work/cmake/bci-$number" "$value" shared "${emulator[@]}"
    "$here/runs.sh" "$work/cmake/bci_static-$number" "$value" static "${emulator[@]}"

    compile=("$compiler" "-std=c++$number" -Wall -Wextra -pedantic -Werror "${flags[@]}" "$here/project/consumer.cpp")
    "${compile[@]}" "${libraries[@]}" "-Wl,-rpath,$prefix/lib" -o "$work/shared-$number"
    "$here/runs.sh" "$work/shared-$number" "$value" shared "${emulator[@]}"
    "${compile[@]}" -static "${staticLibraries[@]}" -o "$work/static-$number"
    "$here/runs.sh" "$work/static-$number" "$value" static "${emulator[@]}"
done

# The installed headers, too, take the scalar types from a kernel.
"$compiler" -std=c++11 -fsyntax-only "${flags[@]}" -I "$here/../headers" \
    '-DBCI_KERNEL_TYPES_HEADER="kernelTypes.h"' "$here/../headers/withKernelTypes.cpp"
