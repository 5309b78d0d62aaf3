#!/bin/bash
# quirks.sh DOCUMENT GOLDEN_DIRECTORY TEST_PROGRAM...: every test that the document names exists.
set -euo pipefail
document=$1 golden=$2
shift 2
status=0

# Parameters of a test are not told in the document.
tests=$(for program in "$@"; do "$program" --gtest_list_tests; done |
    awk '/^[^ ]/ { suite = $1; sub(/\/.*\.$/, ".", suite) } /^ / { sub(/\/.*/, "", $1); print suite $1 }')
# shellcheck disable=SC2016 # of Markdown
cited=$(sed -n '/^|/s/.*| \([^|]*\) |$/\1/p' "$document" | grep -o '`[^`]*`' | tr -d '`')
[ "$(wc -l <<<"$cited")" -gt 60 ] || { echo "only $(wc -l <<<"$cited") tests found in $document" && status=1; }

while read -r name; do
    case $name in
    *": "*) grep -qxF "case ${name#*: }" "$golden/${name%%: *}.golden" ;;
    *) grep -qxF "$name" <<<"$tests" ;;
    esac || { echo "no such test: $name" && status=1; }
done <<<"$cited"
exit "$status"
