#!/usr/bin/env bash
# Runs every code example of a Markdown reference against `vexil --headless`, in the order they appear,
# in one scratch directory (an example may read a file that an earlier one wrote).
# usage: language_examples.sh VEXIL FILE.md
#
# The examples are:
#   a ```basic block: its lines are typed, each followed by Enter. When an ```output block follows it,
#     what VEXIL answers must be that block exactly; otherwise the session must report no error.
#   a table row whose last two cells are `a typed line` and `the answer` (or the word nothing): the same.
# What VEXIL answers is the transcript without the echo of the typed lines and without the Ok lines.
# Every command, function and error message of the source must also be named in the document.
set -uo pipefail

vexil=$(realpath "$1")
document=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/files"

# Writes work/N.keys for every example and work/N.answer where an answer is given; prints the count.
awk -v dir="$work" '
function start(kind) { block = kind; file = dir "/" count (kind == "basic" ? ".keys" : ".answer"); printf "" > file }
block != "" && /^```/ { close(file); after_basic = (block == "basic"); block = ""; next }
block != "" { print > file; next }
/^```basic$/ { count++; start("basic"); next }
/^```output$/ && after_basic { start("output"); next }
/^\| .*`[^`]+` \| (`[^`]*`|nothing) \|$/ {
    n = split($0, cells, / \| /)
    typed = cells[n - 1]; answer = cells[n]
    sub(/ \|$/, "", answer); gsub(/^`|`$/, "", typed)
    count++
    print typed > (dir "/" count ".keys"); close(dir "/" count ".keys")
    printf "" > (dir "/" count ".answer")
    if (answer != "nothing") { gsub(/^`|`$/, "", answer); print answer > (dir "/" count ".answer") }
    close(dir "/" count ".answer")
}
/[^ ]/ { after_basic = 0 }
END { print count + 0 }
' "$document" > "$work/count"

# The transcript minus the typed lines (matched in order) and the Ok lines.
answer_of() {
    awk 'NR == FNR { typed[++n] = $0; next }
         next_typed < n && $0 == typed[next_typed + 1] { next_typed++; next }
         $0 == "Ok" { next }
         { print }' next_typed=0 "$1" "$2"
}

count=$(cat "$work/count")
failed=0

# Every command and function of the tables in runtime/ and every message of engine/error.cpp is named.
root=$(dirname "$document")/..
names=$(sed -n 's/^ *{"\([a-z_0-9]*\)", [cf][mn][dc]_.*/\1/p' "$root"/runtime/command_table.cpp "$root"/runtime/function_table.cpp)
for name in $names; do
    grep -q "\`$name[ (\`]" "$document" || { echo "FAILED: $name is not described"; failed=$((failed + 1)); }
done
while IFS= read -r message; do
    grep -qF "| \`$message\` |" "$document" || { echo "FAILED: the message $message is not listed"; failed=$((failed + 1)); }
done < <(sed -n 's/^ *"\([^"]*\)",.*/\1/p' "$root"/engine/error.cpp | grep -v '^No error$')
for ((index = 1; index <= count; index++)); do
    keys="$work/$index.keys"
    (cd "$work/files" && "$vexil" --headless < "$keys" > "$work/transcript" 2> "$work/stderr")
    status=$?
    answer_of "$keys" "$work/transcript" > "$work/answer"
    problem=""
    if [ -f "$work/$index.answer" ]; then
        cmp -s "$work/$index.answer" "$work/answer" ||
            problem=$(diff -u "$work/$index.answer" "$work/answer" | tail -n +3)
    elif [ "$status" -ne 0 ]; then
        problem="exit status $status, expected no error; it answered:"$'\n'$(cat "$work/answer")
    fi
    if [ -n "$problem" ]; then
        echo "FAILED example $index:"
        sed 's/^/    /' "$keys"
        echo "$problem" | sed 's/^/    /'
        failed=$((failed + 1))
    fi
done
echo "$count examples, $failed failed (and every command, function and message named)"
[ "$count" -gt 0 ] && [ "$failed" -eq 0 ]
