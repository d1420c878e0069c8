#!/usr/bin/env bash
# Runs each libFuzzer target for SECONDS from its seeds in fuzz/corpus (read only) and the inputs earlier
# runs kept in BUILD/corpus, with the keyword dictionary. Prints each target's executions per second and
# in total, and fails when any target finds a crash, a sanitizer report, a leak or an input that hangs.
# usage: run.sh BUILD SECONDS
set -uo pipefail

build=$(realpath "$1")
seconds=$2
fuzz_dir=$(cd "$(dirname "$0")" && pwd)
status=0

max_len() {
    case $1 in
    keys) echo 4096 ;;
    line) echo 252 ;;   # longer inputs are cut: "10 " and the line fit the 255 a line may have
    program) echo 8192 ;;
    esac
}

# The benchmark programs seed the program target too, from a copy: libFuzzer reads folders only.
mkdir -p "$build/corpus/program"
cp "$fuzz_dir"/../bench/*.bas "$build/corpus/program/"

for target in keys line program; do
    work=$build/corpus/$target
    findings=$build/findings/$target
    log=$build/findings/$target.log
    mkdir -p "$work" "$findings"
    # Each input is broken after 20 ms, as a user would break it: one still running after 10 s hangs.
    "$build/fuzz/fuzz_$target" "$work" "$fuzz_dir/corpus/$target" -dict="$fuzz_dir/vexil.dict" \
        -max_total_time="$seconds" -max_len="$(max_len $target)" -timeout=10 -rss_limit_mb=2048 \
        -artifact_prefix="$findings/" -print_final_stats=1 > "$log" 2>&1
    result=$?
    runs=$(awk '/stat::number_of_executed_units/ {value = $2} END {print value}' "$log")
    rate=$(awk '/stat::average_exec_per_sec/ {value = $2} END {print value}' "$log")
    found=$(find "$findings" -type f | wc -l)
    printf '%-8s %7s exec/s %10s executions in %ss, %s findings\n' "$target" "${rate:-?}" "${runs:-?}" "$seconds" "$found"
    if [ $result -ne 0 ] || [ "$found" -ne 0 ]; then
        echo "--- fuzz_$target stopped with status $result; the end of $log:"
        tail -40 "$log"
        ls "$findings"
        status=1
    fi
done
exit $status
