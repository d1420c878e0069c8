#!/usr/bin/env bash
# Line and branch coverage per folder from the counters a coverage build's tests left in BUILD, and for
# the engine as a whole (everything outside host/). Branches the compiler adds for exceptions, and those
# it can prove are never taken, are not counted. The file-by-file report is BUILD/coverage.txt.
# usage: coverage.sh BUILD
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
json=$build/coverage.json
gcovr --root . --object-directory "$build" --filter 'engine/' --filter 'console/' --filter 'language/' \
    --filter 'runtime/' --filter 'host/' --exclude-throw-branches --exclude-unreachable-branches \
    --json "$json" --txt "$build/coverage.txt" --branches

summary() {
    gcovr --add-tracefile "$json" --root . "$@" --print-summary | awk -v name="$name" '
        /^lines:/ {lines = $2 " " $3 " " $4 " " $5 " " $6}
        /^branches:/ {branches = $2 " " $3 " " $4 " " $5 " " $6}
        END {printf "%-10s lines %-26s branches %s\n", name, lines, branches}'
}
for folder in engine console language runtime host; do
    name=$folder summary --filter "$folder/"
done
name="the engine" summary --filter 'engine/' --filter 'console/' --filter 'language/' --filter 'runtime/'
