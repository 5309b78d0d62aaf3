#!/bin/bash
# subdirectory.sh SOURCE WORK [CMAKE-OPTION...] -- [EMULATOR...]: a project that has the library in its own tree, with
# compiler options and a standard of its own, and with the scalar types of a kernel.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
source=$1 work=$2
shift 2
options=()
while [ "$1" != -- ]; do
    options+=("$1")
    shift
done
shift
emulator=("$@")

fail() {
    echo "$*"
    exit 1
}

rm -rf "$work"
mkdir -p "$work"
flags="-funsigned-char -fno-strict-aliasing -I$here/../headers -DBCI_KERNEL_TYPES_HEADER='\"kernelTypes.h\"'"
cmake -G Ninja -S "$here/project" -B "$work/cmake" -D BCI_SOURCE_DIR="$source" -D CMAKE_BUILD_TYPE=Debug \
    -D CMAKE_CXX_FLAGS="$flags" "${options[@]}" >"$work/cmake.log" || fail "$(cat "$work/cmake.log")"
cmake --build "$work/cmake" -j 2 >>"$work/cmake.log" || fail "$(cat "$work/cmake.log")"
for standard in 11=201103 20=202002; do
    number=${standard%=*} value=${standard#*=}
    "$here/runs.sh" "$work/cmake/bci-$number" "$value" shared "${emulator[@]}"
    "$here/runs.sh" "$work/cmake/bci_static-$number" "$value" static "${emulator[@]}"
done

# It installs what is its own, and nothing of the library.
cmake --install "$work/cmake" --prefix "$work/prefix" >"$work/install.log"
[ ! -e "$work/prefix" ] || fail "installed by a project that has nothing to install:"$'\n'"$(cat "$work/install.log")"
