#!/bin/bash
# runs.sh PROGRAM STANDARD shared|static [EMULATOR...]: the program is of the standard (its __cplusplus), needs libbci.so
# or does not, and works.
set -euo pipefail
program=$1 standard=$2 kind=$3
shift 3

fail() {
    echo "$program: $*"
    exit 1
}

output=$("$@" "$program") || fail "exit status $?"
[ "$output" = "C++ $standard
text: 16 written, signal 23430145, from 1 to -7, state 3
binary: 14 written, signal 23430145, from 1 to -7, state 3
xml: 128 written, signal 23430145, from 1 to -7, state 3" ] || fail "printed"$'\n'"$output"

needed=$(LC_ALL=C readelf --dynamic --wide "$program" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
if [ "$kind" = shared ]; then
    grep -q '^libbci\.so\.' <<<"$needed" || fail "not linked with the shared library"
elif grep -q '^libbci' <<<"$needed"; then
    fail "not linked with the static library"
fi
