#!/bin/bash
# baseline.sh compare|renew LIBRARY BASELINE: whether programs that were linked with the library of the baseline go on
# working with this one: the same functions, types, sizes, offsets and places in virtual tables. Any difference
# fails, an addition too: it is for whoever makes it to look at, and then to renew the baseline.
set -euo pipefail
what=$1 library=$2 baseline=$3
# Types of the C++ library are its own to keep stable, and nobody sees those that no public header has.
scope=(--exported-interfaces-only --suppressions "$(dirname "$(readlink -f "$0")")/suppressions.ini")

case $what in
compare) abidiff "${scope[@]}" "$baseline" "$library" ;;
renew)
    abidw "${scope[@]}" --no-corpus-path --no-comp-dir-path --no-show-locs --no-parameter-names --type-id-style hash \
        "$library" >"$baseline"
    ;;
esac
