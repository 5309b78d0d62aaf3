#!/bin/bash
# parallel.sh LINES: a log of damaged and undamaged lines of all signals, read in pieces by several processes at a
# time, gives byte for byte what one process makes of it.
set -euo pipefail
lines=$1
examples=$(dirname "$(readlink -f "$0")")/../../examples/bulk
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
export PARALLEL_HOME=$directory PARALLEL=--will-cite

"$examples/makeLog.py" --lines "$lines" --damage 50 >"$directory/log"
size=$(stat -c %s "$directory/log")
# Pieces of a size that is no power of two, about twenty of them.
"$examples/parallel.sh" "$directory/log" $((size / 20 + 1)) >"$directory/rows"
bci decode --filter --byte-range "0-$size" "$directory/log" | cmp - "$directory/rows"
count=$(wc -l <"$directory/rows")
[ "$count" -eq "$lines" ] || {
    echo "$lines lines, $count rows"
    exit 1
}

# The rows are those of all signals, of the lines as they are numbered, with damage and without.
python3 - "$directory/log" "$directory/rows" <<'END'
import itertools
import json
import sys

offset = damaged = 0
names = set()
with open(sys.argv[1], "rb") as log, open(sys.argv[2], encoding="utf-8") as rows:
    for number, (line, text) in enumerate(itertools.islice(zip(log, rows), 20000), 1):
        row = json.loads(text)
        assert row["offset"] == offset, f"line {number} has offset {offset}: {text}"
        offset += len(line)
        names.add(row["name"])
        if row["damages"]:
            damaged += 1
        else:
            assert row["numbers"]["clientRef"] == number, f"line {number}: {text}"
names.discard(None)
assert len(names) == 66, f"{len(names)} signals: {sorted(names)}"
assert 0 < damaged < number / 10, f"{damaged} of {number} lines are damaged"
END

# What goes through pipes comes with other places: rows are numbered from 1 in each piece.
places='s/"record":[0-9]*,"offset":[0-9]*,"line":[0-9]*//'
"$examples/makeLog.py" --lines $((lines / 10)) >"$directory/log"
parallel --pipepart --keep-order --block $((size / 80 + 1)) -a "$directory/log" bci decode --filter |
    sed "$places" >"$directory/rows"
bci decode --filter <"$directory/log" | sed "$places" | cmp - "$directory/rows"
count=$(wc -l <"$directory/rows")
echo "$lines and $count lines"
