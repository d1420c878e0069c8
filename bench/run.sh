#!/usr/bin/env bash
# Times the benchmark programs with a Release build:
#   build/vexil --headless PROGRAM < /dev/null > /dev/null
# with hyperfine when it is installed, else a loop of timed runs; then the start-up time (no program)
# and the peak memory of each run. usage: bench/run.sh [PROGRAM.bas...]   (RUNS=N sets the loop's runs)
set -euo pipefail
cd "$(dirname "$0")/.."

build=build-release
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release --log-level=WARNING >/dev/null
cmake --build "$build" -j2 --target vexil >/dev/null
vexil="$build/vexil"
runs=${RUNS:-5}

if [ $# -gt 0 ]; then programs=("$@"); else programs=(bench/*.bas); fi

# Every program must end cleanly, or its time means nothing.
for program in "${programs[@]}"; do
    if ! "$vexil" --headless "$program" < /dev/null > /dev/null; then
        echo "bench: $program reported an error" >&2
        exit 1
    fi
done

seconds_now() { date +%s.%N; }

# Mean wall time of a command over $runs runs, after one run to warm up.
time_loop() {
    local start end
    "$@" < /dev/null > /dev/null
    start=$(seconds_now)
    for ((run = 0; run < runs; ++run)); do
        "$@" < /dev/null > /dev/null
    done
    end=$(seconds_now)
    echo "$start $end $runs" | awk '{ printf "%8.1f ms  mean of %d runs\n", ($2 - $1) * 1000 / $3, $3 }'
}

echo "== times (wall clock)"
if command -v hyperfine > /dev/null; then
    commands=("'$vexil' --headless < /dev/null")
    for program in "${programs[@]}"; do
        commands+=("'$vexil' --headless '$program' < /dev/null")
    done
    hyperfine --warmup 1 --min-runs "$runs" --style basic "${commands[@]}"
else
    printf '%-28s' "start-up (no program)"
    time_loop "$vexil" --headless
    for program in "${programs[@]}"; do
        printf '%-28s' "$(basename "$program")"
        time_loop "$vexil" --headless "$program"
    done
fi

echo "== peak memory (maximum resident set size)"
if [ -x /usr/bin/time ]; then
    for program in "" "${programs[@]}"; do
        label=${program:-start-up (no program)}
        kilobytes=$(/usr/bin/time -v "$vexil" --headless $program < /dev/null 2>&1 > /dev/null |
            awk -F: '/Maximum resident set size/ { gsub(/ /, "", $2); print $2 }')
        printf '%-28s %8s kB\n' "$(basename "$label")" "$kilobytes"
    done
else
    echo "(no /usr/bin/time: install the Debian package time)"
fi
