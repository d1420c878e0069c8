#!/usr/bin/env bash
# Counts the instructions VEXIL (Release build) executes on each benchmark, under callgrind: unlike
# wall time, the count does not move when the machine is busy, so it compares one change with another.
#   usage: bench/instructions.sh [NAME...]     (VEXIL=path: count that binary instead of building one)
# The profiles stay in build-release/callgrind.NAME for callgrind_annotate.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v valgrind > /dev/null || { echo "bench/instructions.sh needs valgrind: apt-get install valgrind" >&2; exit 1; }

if [ -z "${VEXIL:-}" ]; then
    cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release --log-level=WARNING >/dev/null
    cmake --build build-release -j2 --target vexil >/dev/null
fi
vexil=${VEXIL:-build-release/vexil}
if [ $# -gt 0 ]; then names=("$@"); else names=(loop gosub sieve mandelbrot strings matrix rugg); fi

printf '%-12s %16s\n' program instructions
for name in "${names[@]}"; do
    out=build-release/callgrind.$name
    valgrind --tool=callgrind --callgrind-out-file="$out" "$vexil" --headless "bench/$name.bas" \
        > /dev/null 2> "$out.log"
    printf '%-12s %16s\n' "$name" "$(sed -n 's/^summary: //p' "$out")"
done
