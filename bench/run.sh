#!/usr/bin/env bash
# make bench: times every benchmark program on VEXIL (a Release build, headless) and on the other
# interpreters in alternating rounds within one run, checks that every run printed the same last line,
# prints the median and fastest wall times, VEXIL's ratio to each peer, its peak memory and start-up
# time, draws the fastest times as a bar chart (bench/chart.png) and writes the table into bench/README.md.
#   usage: bench/run.sh [NAME...]            e.g. bench/run.sh loop print
#   ROUNDS=N (default 5); SLOW_ROUNDS=N: rounds that include bwbasic, which is 100 times slower (default 1)
#   PEERS="yabasic lua" to time only those peers (default: yabasic brandy bwbasic lua python)
# Programs: bench/NAME.bas for VEXIL and bench/others/PEER/NAME.EXT for each peer, doing the same work and
# printing the same last line. Timing only: nothing here is a test, and figures are worth keeping only
# from an otherwise idle machine.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

rounds=${ROUNDS:-5}
slow_rounds=${SLOW_ROUNDS:-1}
peers=(${PEERS:-yabasic brandy bwbasic lua python})

# Each tool as command:package; the Debian packages of those missing are installed (as root, or through sudo).
install_missing() {
    local missing=() tool
    for tool in "$@"; do
        command -v "${tool%%:*}" > /dev/null || missing+=("${tool#*:}")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -eq 0 ] || sudo=sudo
    $sudo env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
        -o Dpkg::Use-Pty=0 "${missing[@]}" > /dev/null
}
install_missing yabasic:yabasic brandy:brandy bwbasic:bwbasic lua5.4:lua5.4 /usr/bin/python3:python3 \
    gnuplot:gnuplot-nox /usr/bin/time:time

cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release --log-level=WARNING > /dev/null
cmake --build build-release -j2 --target vexil > /dev/null
vexil=$root/build-release/vexil

# name | program extension | command (the program's path is appended). Brandy draws into an SDL window:
# the dummy driver keeps it off the screen, its PRINT goes to its own screen memory, and its programs
# write their last line to result.txt for the check.
declare -A commands=(
    [vexil]="bas|$vexil --headless"
    [yabasic]="yab|yabasic"
    [brandy]="bbc|env SDL_VIDEODRIVER=dummy brandy -quit"
    [bwbasic]="bas|bwbasic"
    [lua]="lua|lua5.4"
    [python]="py|/usr/bin/python3"
)
interpreters=(vexil "${peers[@]}")

if [ $# -gt 0 ]; then
    names=("$@")
else
    names=()
    for program in bench/*.bas; do names+=("$(basename "$program" .bas)"); done
fi

program_of() {  # interpreter name
    local extension=${commands[$1]%%|*}
    if [ "$1" = vexil ]; then echo "$root/bench/$2.$extension"; else echo "$root/bench/others/$1/$2.$extension"; fi
}

# Output goes to a file in memory where there is one: what is timed is the interpreter, not the disk.
scratch=$(mktemp -d -p /dev/shm 2> /dev/null || mktemp -d)
trap 'rm -rf "$scratch"' EXIT
times_file=$scratch/times  # interpreter name wall-ms cpu-ms, one line per run
: > "$times_file"

# The last line a run showed, trailing blanks cut; a number stands for its value, so that "-138650",
# "-138650.0" and "-138650.000000" agree.
last_line() {
    tr -d '\r' < "$1" | sed 's/[[:space:]]*$//' | grep -v '^$' | tail -n 1 |
        awk '{ if ($0 ~ /^[ \t]*[-+]?[0-9]*\.?[0-9]+([eE][-+]?[0-9]+)?[ \t]*$/) printf "%.6g\n", $0; else print }'
}

# Milliseconds of CPU (user and system) in the children line of a `times` report. `times` is taken in
# this shell, right before and after a run, so no other child falls between them; on a shared machine the
# CPU time swings far less than the wall time.
cpu_ms() {
    awk 'NR == 2 { total = 0; for (f = 1; f <= 2; ++f) { split($f, part, /[ms]/); total += part[1] * 60 + part[2] } printf "%.0f\n", total * 1000 }' "$1"
}

declare -A expected=()
# One timed run in the scratch folder, its output checked against VEXIL's first run of the program.
run_once() {  # interpreter name
    local program command start end cpu_start cpu_end output=$scratch/output line
    program=$(program_of "$1" "$2")
    command=${commands[$1]#*|}
    rm -f "$scratch/result.txt"
    times > "$scratch/cpu_start"
    start=$EPOCHREALTIME
    (cd "$scratch" && $command "$program" < /dev/null > "$output" 2> "$scratch/errors") || {
        echo "bench: $1 $2 failed:" >&2
        cat "$scratch/errors" "$output" >&2
        exit 1
    }
    end=$EPOCHREALTIME
    times > "$scratch/cpu_end"
    cpu_start=$(cpu_ms "$scratch/cpu_start") cpu_end=$(cpu_ms "$scratch/cpu_end")
    [ -f "$scratch/result.txt" ] && output=$scratch/result.txt
    line=$(last_line "$output")
    if [ -z "${expected[$2]+set}" ]; then
        expected[$2]=$line
    elif [ "$line" != "${expected[$2]}" ]; then
        echo "bench: $1 $2 printed \"$line\", VEXIL \"${expected[$2]}\"" >&2
        exit 1
    fi
    awk -v i="$1" -v n="$2" -v s="$start" -v e="$end" -v cs="$cpu_start" -v ce="$cpu_end" \
        'BEGIN { printf "%s %s %.1f %.0f\n", i, n, (e - s) * 1000, ce - cs }' >> "$times_file"
}

for ((round = 1; round <= rounds; ++round)); do
    echo "round $round of $rounds" >&2
    for name in "${names[@]}"; do
        for interpreter in "${interpreters[@]}"; do
            [ "$interpreter" = bwbasic ] && ((round > slow_rounds)) && continue
            [ -f "$(program_of "$interpreter" "$name")" ] || continue
            run_once "$interpreter" "$name"
        done
    done
done

# Peak memory of each VEXIL run, and start-up: from nothing to the banner's "Ok" on the screen, then the
# input ends and the run with it; the fastest of 20 runs.
declare -A memory=()
for name in "${names[@]}"; do
    memory[$name]=$(/usr/bin/time -f %M "$vexil" --headless "$(program_of vexil "$name")" < /dev/null 2>&1 > /dev/null | tail -n 1)
done
startup_memory=$(/usr/bin/time -f %M "$vexil" --headless < /dev/null 2>&1 > /dev/null | tail -n 1)
startup=$(for ((run = 0; run < 20; ++run)); do
    start=$EPOCHREALTIME
    "$vexil" --headless < /dev/null > /dev/null
    end=$EPOCHREALTIME
    awk -v s="$start" -v e="$end" 'BEGIN { printf "%.2f\n", (e - s) * 1000 }'
done | sort -n | head -n 1)

# Median and fastest of each cell, of the wall times (column 3) or the CPU times (column 4).
statistics() {  # column interpreter name -> "median fastest", or nothing
    awk -v c="$1" -v i="$2" -v n="$3" '$1 == i && $2 == n { print $c }' "$times_file" | sort -n |
        awk '{ t[NR] = $1 } END { if (NR) printf "%.1f %.1f\n", (NR % 2 ? t[(NR + 1) / 2] : (t[NR / 2] + t[NR / 2 + 1]) / 2), t[1] }'
}

# A markdown table of one kind of time: median (fastest) per interpreter, then VEXIL's fastest over each
# peer's fastest; the wall table also gives VEXIL's peak memory and feeds the chart.
time_table() {  # column title
    local name interpreter peer median best row
    printf '| %s |' "$2"
    for interpreter in "${interpreters[@]}"; do printf ' %s |' "$interpreter"; done
    for peer in "${peers[@]}"; do printf ' vexil/%s |' "$peer"; done
    printf ' vexil/faster BASIC |'
    [ "$1" = 3 ] && printf ' vexil peak memory |'
    printf '\n|---|'
    for _ in "${interpreters[@]}" "${peers[@]}" basic; do printf -- '---:|'; done
    [ "$1" = 3 ] && printf -- '---:|'
    printf '\n'
    for name in "${names[@]}"; do
        local -A fastest=()
        row="| $name |"
        for interpreter in "${interpreters[@]}"; do
            median="" best=""
            read -r median best <<< "$(statistics "$1" "$interpreter" "$name")" || true
            if [ -z "$best" ]; then
                row+=" - |"
            else
                fastest[$interpreter]=$best
                row+=" $median ($best) |"
            fi
        done
        for peer in "${peers[@]}"; do
            if [ -n "${fastest[$peer]:-}" ] && [ -n "${fastest[vexil]:-}" ]; then
                row+=" $(awk -v v="${fastest[vexil]}" -v p="${fastest[$peer]}" 'BEGIN { printf "%.2f", v / p }') |"
            else
                row+=" - |"
            fi
        done
        # The goal is set against the faster of the two BASICs that compile their programs first.
        row+=" $(awk -v v="${fastest[vexil]:-}" -v y="${fastest[yabasic]:-}" -v b="${fastest[brandy]:-}" 'BEGIN {
            best = y != "" && (b == "" || y + 0 < b + 0) ? y : b
            if (v == "" || best == "") print "-"; else printf "%.2f", v / best }') |"
        [ "$1" = 3 ] && row+=" $(awk -v k="${memory[$name]}" 'BEGIN { printf "%.1f MiB", k / 1024 }') |"
        echo "$row"
    done
}

chart_data=$scratch/chart.dat
{
    echo "program ${interpreters[*]}"
    for name in "${names[@]}"; do
        row=$name
        for interpreter in "${interpreters[@]}"; do
            best=$(statistics 3 "$interpreter" "$name" | cut -d' ' -f2)
            row+=" ${best:-NaN}"
        done
        echo "$row"
    done
} > "$chart_data"

table=$scratch/table
{
    time_table 3 "wall ms"
    echo
    time_table 4 "CPU ms"
} > "$table"

machine="$(grep -m 1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ *//'), $(nproc) cores, $(uname -sr)"
date=$(date -u '+%Y-%m-%d %H:%M UTC')
summary="Start-up of a headless run to the banner's Ok and out again: $startup ms (fastest of 20), peak memory $(awk -v k="$startup_memory" 'BEGIN { printf "%.1f MiB", k / 1024 }')."
note="Median (fastest) of $rounds rounds, bwbasic $slow_rounds; ratios are of the fastest times. Wall time runs from the start of the interpreter to its end, CPU time is its user and system time."

echo
cat "$table"
echo
echo "$summary"
echo "$note"
echo "Machine: $machine; $date"

gnuplot <<EOF
set terminal pngcairo size 960,540 font "sans,10"
set output "$root/bench/chart.png"
set title "Fastest wall time per program (log scale); $date"
set ylabel "milliseconds"
set logscale y
set style data histograms
set style histogram clustered gap 1
set style fill solid 0.8 border -1
set key top left
set grid ytics
set xtics nomirror
plot for [column = 2:$((${#interpreters[@]} + 1))] "$chart_data" using column:xtic(1) title columnheader
EOF

# The table between the markers of bench/README.md, with the machine and the date.
block=$scratch/block
{
    echo "<!-- bench table: written by bench/run.sh -->"
    echo "Machine: $machine. Run: $date."
    echo
    cat "$table"
    echo
    echo "$note $summary"
    echo
    echo "![fastest times](chart.png)"
    echo "<!-- end of bench table -->"
} > "$block"
awk -v block="$block" '
    /^<!-- bench table: written by bench\/run.sh -->$/ { while ((getline line < block) > 0) print line; skipping = 1; next }
    /^<!-- end of bench table -->$/ { skipping = 0; next }
    !skipping { print }
' bench/README.md > "$scratch/readme" && cp "$scratch/readme" bench/README.md
echo "bench: chart in bench/chart.png, table in bench/README.md"
