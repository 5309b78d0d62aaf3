#!/bin/bash
# shellScripts.sh SHELLCHECK: what begins as a shell script passes the checker.
set -euo pipefail
shellcheck=$1
cd "$(dirname "$0")/../.."

scripts=()
while IFS= read -r -d '' file; do
    read -r first <"$file" || true
    if [[ $first =~ ^'#!/bin/'(ba)?sh ]]; then scripts+=("$file"); fi
done < <(find . \( -name build -o -name .git -o -name node_modules \) -prune -o -type f -perm -u+x -print0)
[ ${#scripts[@]} -gt 5 ] || { echo "only ${#scripts[@]} scripts found" && exit 1; }
"$shellcheck" "${scripts[@]}"
