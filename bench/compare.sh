#!/usr/bin/env bash
# Times each benchmark in VEXIL (Release build) and in the other BASIC interpreters that are installed,
# and prints one table of mean wall times. The other interpreters are for comparison only: install them
# by hand (apt-get install -y yabasic brandy); nothing in the build or in CI needs them.
#   usage: bench/compare.sh [NAME...]        e.g. bench/compare.sh loop sieve   (RUNS=N: runs per cell,
#          VEXIL=path: time that binary instead of building one)
# Programs: bench/NAME.bas for VEXIL, bench/others/<interpreter>/NAME.<ext> for the others, doing the
# same work and printing the same amount. Brandy draws into an SDL window: the dummy video driver
# keeps it off the screen, so its PRINT goes to its own screen memory, as VEXIL's goes to its console.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ -z "${VEXIL:-}" ]; then
    cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release --log-level=WARNING >/dev/null
    cmake --build build-release -j2 --target vexil >/dev/null
fi
vexil=${VEXIL:-build-release/vexil}
runs=${RUNS:-5}

if [ $# -gt 0 ]; then names=("$@"); else names=(loop gosub mandelbrot matrix print sieve strings); fi

# interpreter name, program extension, command prefix (the program path is appended)
interpreters=("vexil|bas|$vexil --headless")
command -v yabasic > /dev/null && interpreters+=("yabasic|yab|yabasic")
command -v brandy > /dev/null && interpreters+=("brandy|bbc|env SDL_VIDEODRIVER=dummy brandy -quit")

program_of() {  # interpreter extension name
    if [ "$1" = vexil ]; then echo "bench/$3.$2"; else echo "bench/others/$1/$3.$2"; fi
}

# Mean seconds of a command over $runs runs after one warm-up, with hyperfine when it is there.
mean_seconds() {
    if command -v hyperfine > /dev/null; then
        local json
        json=$(mktemp)
        hyperfine -N --warmup 1 --runs "$runs" --export-json "$json" "$1" > /dev/null 2>&1
        python3 -c 'import json,sys; print("%.3f" % json.load(open(sys.argv[1]))["results"][0]["mean"])' "$json"
        rm -f "$json"
    else
        bash -c "$1" < /dev/null > /dev/null 2>&1
        local start end
        start=$(date +%s.%N)
        for ((run = 0; run < runs; ++run)); do bash -c "$1" < /dev/null > /dev/null 2>&1; done
        end=$(date +%s.%N)
        echo "$start $end $runs" | awk '{ printf "%.3f\n", ($2 - $1) / $3 }'
    fi
}

printf '%-12s' program
for entry in "${interpreters[@]}"; do printf '%12s' "${entry%%|*}"; done
printf '%14s\n' 'vexil/best'
for name in "${names[@]}"; do
    printf '%-12s' "$name"
    best=""
    vexil_time=""
    for entry in "${interpreters[@]}"; do
        IFS='|' read -r interpreter extension command <<< "$entry"
        program=$(program_of "$interpreter" "$extension" "$name")
        if [ ! -f "$program" ]; then printf '%12s' '-'; continue; fi
        seconds=$(mean_seconds "$command $program")
        printf '%11ss' "$seconds"
        if [ "$interpreter" = vexil ]; then
            vexil_time=$seconds
        elif [ -z "$best" ] || awk "BEGIN { exit !($seconds < $best) }"; then
            best=$seconds
        fi
    done
    if [ -n "$best" ] && [ -n "$vexil_time" ]; then
        awk "BEGIN { printf \"%14.2f\n\", $vexil_time / $best }"
    else
        echo
    fi
done
echo "(mean wall time of $runs runs; vexil/best is VEXIL's time over the fastest other interpreter's)"
