#!/bin/bash
# examples/bulk/run.sh [LINES]: makes a log (100000 lines), decodes it with GNU parallel, has DuckDB load the rows and
# ClickHouse decode and load the log, and compares their answers with each other and with what "bci stats" counts.
# Wants bci, node and npm, and parallel.
set -euo pipefail
lines=${1:-100000}
cd "$(dirname "$(readlink -f "$0")")"
[ -d node_modules ] || npm install --no-fund --no-audit >&2

directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
./makeLog.py --lines "$lines" --trace --damage 100 >"$directory/log.txt"
./parallel.sh "$directory/log.txt" $((1 << 20)) >"$directory/rows.ndjson"

node duckdb.mjs "$directory/rows.ndjson" >"$directory/duckdb"
node clickhouse.mjs "$directory/log.txt" >"$directory/clickhouse"
diff "$directory/duckdb" "$directory/clickhouse"
{
    printf 'rows\t%s\n' "$lines"
    # Exit status 1 says that there is damage.
    { bci stats "$directory/log.txt" || [ $? -eq 1 ]; } |
        awk '$2 == "damage" { print "damages per code\t" $1 "\t" $3 }' | LC_ALL=C sort
} | diff - <(grep -E '^(rows|damages per code)' "$directory/duckdb")

grep -v '^records per class and minute' "$directory/duckdb"
echo "$(grep -c '^records per class and minute' "$directory/duckdb") counts of records per class and minute"
echo "DuckDB, ClickHouse and bci stats agree"
