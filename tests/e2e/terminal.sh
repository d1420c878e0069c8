#!/usr/bin/env bash
# The terminal host in a detached tmux session of 100 x 30: keys typed into the pane, the pane's text
# read back; then a session closed by SIGHUP, and a terminal that cannot move the cursor.
# usage: terminal.sh VEXIL   (status 77: skipped, for want of tmux)
set -uo pipefail

vexil=$(realpath "$1")
# Exit status 77 is what ctest reports as skipped: a test that cannot run never counts as passed.
if ! "$vexil" --help 2>/dev/null | grep -q -- '--terminal'; then
    echo "terminal.sh: skipped: this vexil has no --terminal"
    exit 77
fi
if ! command -v tmux >/dev/null; then
    echo "terminal.sh: skipped: tmux is not installed (make test installs it)"
    exit 77
fi

work=$(mktemp -d)
# A tmux server of our own, with no user configuration, whatever terminal (if any) runs this script.
export TMUX_TMPDIR=$work
unset TMUX
tmux_() { tmux -L vexil -f /dev/null "$@"; }
trap 'tmux_ kill-server 2>/dev/null; rm -rf "$work"' EXIT

fail() {
    echo "terminal.sh: $1"
    echo "--- the pane's rows that are not empty:"
    grep -n -v '^$' "$work/pane" 2>/dev/null
    exit 1
}

# Tries a command every tenth of a second, for at most ten seconds.
within_ten_seconds() {
    for _ in $(seq 100); do
        "$@" && return 0
        sleep 0.1
    done
    return 1
}
# The pane of session $target, polled until grep finds the pattern.
target=vexil
pane_shows() { tmux_ capture-pane -p -t "$target" > "$work/pane" 2>/dev/null && grep -q -- "$1" "$work/pane"; }
wait_for() { within_ten_seconds pane_shows "$1" || fail "not shown within ten seconds: $1"; }
wait_for_file() { within_ten_seconds test -e "$1" || fail "no $1 within ten seconds"; }
session_ended() { ! tmux_ has-session -t vexil 2>/dev/null; }
# A file holds exactly this text (its last line end aside).
holds() { [ "$(cat "$1")" = "$2" ] || fail "$1 holds $(cat -A "$1"), expected: $2"; }
type_line() {
    tmux_ send-keys -t "$target" -l "$1"
    tmux_ send-keys -t "$target" Enter
}

# After vexil, the shell in the pane records its status and the terminal's modes, and the session ends.
tmux_ new-session -d -s vexil -x 100 -y 30 \
    "TERM=tmux-256color '$vexil' --terminal --png '$work/screen.png'; echo \$? > '$work/status'; stty -a > '$work/stty'" \
    || fail "tmux cannot start a session"

wait_for '^Ok'
type_line 'print 1+2'
wait_for '^3$'
sed -n '/^3$/{n;p;}' "$work/pane" | grep -qx 'Ok' || fail "no Ok after the answer"

# 100 columns, not the default 80: ninety characters stay on one row.
type_line "print \"$(printf '%090d' 0)\""
wait_for '^0\{90\}$'

# Editing keys as the terminal sends them: an arrow's escape sequence, Back space as 127, Delete.
tmux_ send-keys -t vexil -l 'print 4x5'
tmux_ send-keys -t vexil Left BSpace
tmux_ send-keys -t vexil -l '*'
tmux_ send-keys -t vexil Enter
wait_for '^20$'
tmux_ send-keys -t vexil -l 'print 7+89'
tmux_ send-keys -t vexil Left Left DC Enter
wait_for '^16$'

# The line is seen running before Control+C: a break while idle would be forgotten by the next line.
type_line 'print "looping":$a goto $a'
wait_for '^looping$'
tmux_ send-keys -t vexil C-c
wait_for '^Break'
type_line 'print 6*7'
wait_for '^42$'
# A program's sleep ends at Control+C, not when its hour is up; cls leaves the earlier Break off the pane.
type_line 'cls: print "sleeping": sleep 3600000'
wait_for '^sleeping$'
tmux_ send-keys -t vexil C-c
wait_for '^Break'

# e acute, the euro sign, then x: two "?" keys and the x.
type_line 'print "é€x"'
wait_for '^??x$'

type_line 'exit'
within_ten_seconds session_ended || fail "the session is still there ten seconds after exit"
[ -f "$work/status" ] || fail "vexil did not return"
holds "$work/status" 1  # the Break was reported, and an error report makes the status 1
[ -s "$work/screen.png" ] || fail "no image written by --png"
for mode in icanon echo isig; do
    grep -qw -- "-$mode" "$work/stty" && fail "the terminal was left with -$mode: $(cat "$work/stty")"
    grep -qw -- "$mode" "$work/stty" || fail "no $mode in the terminal's modes: $(cat "$work/stty")"
done

# SIGHUP while the program differs from what was saved (the automatic choice is the terminal here):
# kept beside the older recovery file.
mkdir "$work/recover"
echo older > "$work/recover/vexil-recovered.bas"
target=recover
tmux_ new-session -d -s recover -x 80 -y 24 \
    "cd '$work/recover' && env -u DISPLAY -u WAYLAND_DISPLAY TERM=tmux-256color '$vexil' 2> stderr" \
    || fail "tmux cannot start a session"
wait_for '^Ok'
type_line '10 print "kept"'
type_line 'list'
wait_for '^10 print "kept"$'
tmux_ kill-session -t recover  # the terminal closes: SIGHUP
wait_for_file "$work/recover/vexil-recovered-2.bas"
holds "$work/recover/vexil-recovered-2.bas" $'print "kept"\r'
holds "$work/recover/vexil-recovered.bas" older  # not overwritten
wait_for_file "$work/recover/stderr"
grep -qx 'vexil: the program was not saved: it is in "vexil-recovered-2.bas"; type load "vexil-recovered-2.bas" to get it back' \
    "$work/recover/stderr" || fail "standard error: $(cat "$work/recover/stderr")"

# A terminal that cannot move the cursor: --terminal refuses it; the automatic choice reads keys headless.
target=dumb
tmux_ new-session -d -s dumb -x 80 -y 24 \
    "cd '$work' && TERM=dumb '$vexil' --terminal 2> dumb_stderr; echo \$? > dumb_status; env -u DISPLAY -u WAYLAND_DISPLAY TERM=dumb '$vexil'; echo \$? > auto_status; sleep 60" \
    || fail "tmux cannot start a session"
wait_for_file "$work/dumb_status"
holds "$work/dumb_stderr" 'vexil: cannot use the terminal type "dumb": it cannot move the cursor'
holds "$work/dumb_status" 1
type_line 'print 6*7'
wait_for '^42$'
tmux_ send-keys -t dumb C-d
wait_for_file "$work/auto_status"
holds "$work/auto_status" 0
echo "terminal.sh: passed"
