#!/usr/bin/env bash
# Runs every case in cases/ against the binary, as `vexil --headless ARGS [NAME.bas] < NAME.keys`, and
# compares standard output, exit status, standard error and, when asked, the PNG written.
# usage: run.sh VEXIL PNG_PROBE [NAME...]
# With VEXIL_E2E_RUNNER set (make test VALGRIND=1 sets a valgrind command), the binary runs under it;
# what it reports goes to standard error and fails the case.
#
# A case is NAME.case, lines of "field: value" ('#' lines say what the case checks):
#   args: OPTIONS        put before the program file; the word PNG stands for a temporary image file
#   status: N            the expected exit status (default 0)
#   stderr: TEXT         a line of the expected standard error, all of it in order (default: none)
#   png: WxH             the image's expected size;  pixel: X,Y RRGGBB  one of its pixels
# with, beside it, any of:
#   NAME.keys            standard input, read with printf's %b escapes (\r, \x08, \\); default none
#   NAME.bas             the program file, copied to the case's folder and named there after the options
#   NAME.expected        the expected standard output, exactly (default: empty)
set -uo pipefail

vexil=$(realpath "$1")
probe=$(realpath "$2")
shift 2
cases_dir=$(cd "$(dirname "$0")/cases" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run_case() {
    local -
    set -f
    local name=$1 file="$cases_dir/$1.case"
    local args="" status=0 stderr_text="" png_size="" pixels=() line
    while IFS= read -r line || [ -n "$line" ]; do
        case $line in
        args:*) args=${line#args:} ;;
        status:*) status=$(echo ${line#status:}) ;;
        stderr:*) stderr_text+=${line#stderr: }$'\n' ;;
        png:*) png_size=$(echo ${line#png:}) ;;
        pixel:*) pixels+=("$(echo ${line#pixel:})") ;;
        esac
    done < "$file"

    local dir="$work/$name"
    mkdir -p "$dir"
    local keys=/dev/null
    if [ -f "$cases_dir/$name.keys" ]; then
        local text
        text=$(cat "$cases_dir/$name.keys"; echo .)  # the dot keeps trailing line ends
        printf '%b' "${text%.}" > "$dir/keys"
        keys="$dir/keys"
    fi
    local argv=()
    for word in $args; do
        [ "$word" = PNG ] && word="$dir/out.png"
        argv+=("$word")
    done
    [ -f "$cases_dir/$name.bas" ] && cp "$cases_dir/$name.bas" "$dir/" && argv+=("$name.bas")

    (cd "$dir" && ${VEXIL_E2E_RUNNER:-} "$vexil" --headless "${argv[@]}" < "$keys" > "$dir/stdout" 2> "$dir/stderr")
    local actual_status=$? problems=""

    local expected=/dev/null
    [ -f "$cases_dir/$name.expected" ] && expected="$cases_dir/$name.expected"
    if ! cmp -s "$expected" "$dir/stdout"; then
        problems+="standard output differs (- expected, + actual):"$'\n'
        problems+=$(diff -u "$expected" "$dir/stdout" | tail -n +3)$'\n'
    fi
    [ "$actual_status" = "$status" ] || problems+="exit status $actual_status, expected $status"$'\n'
    if [ "$(cat "$dir/stderr"; echo .)" != "$stderr_text." ]; then
        problems+="standard error differs (- expected, + actual):"$'\n'
        problems+=$(diff -u <(printf '%s' "$stderr_text") "$dir/stderr" | tail -n +3)$'\n'
    fi
    if [ -n "$png_size" ]; then
        local want coordinates=()
        want="$png_size"$'\n'
        for pixel in "${pixels[@]}"; do
            coordinates+=("${pixel%% *}")
            want+="$pixel"$'\n'
        done
        local got
        got=$("$probe" "$dir/out.png" "${coordinates[@]}" 2>&1)$'\n'
        [ "$got" = "$want" ] || problems+="image differs: expected"$'\n'"$want"'got'$'\n'"$got"
    fi

    if [ -z "$problems" ]; then
        echo "ok     $name"
        return 0
    fi
    echo "FAILED $name"
    printf '%s' "$problems" | sed 's/^/    /'
    return 1
}

names=("$@")
if [ ${#names[@]} -eq 0 ]; then
    for file in "$cases_dir"/*.case; do
        names+=("$(basename "$file" .case)")
    done
fi
passed=0
failed=0
for name in "${names[@]}"; do
    if run_case "$name"; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
    fi
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
