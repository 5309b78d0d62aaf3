#!/bin/bash
# examples/bulk/parallel.sh LOG [BYTES]: writes the rows of a log that is read in pieces of so many bytes (64 MiB)
# by as many processes as there are cores; in the order of the log, one row for each of its lines.
set -euo pipefail
log=${1:?usage: examples/bulk/parallel.sh LOG [BYTES]}
piece=${2:-$((64 << 20))}

size=$(stat -L -c %s "$log")
for ((begin = 0; begin <= size; begin += piece)); do
    echo "$begin-$((begin + piece))"
done | parallel --keep-order --halt soon,fail=1 --quote bci decode --filter --byte-range {} "$log"
