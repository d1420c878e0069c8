#!/usr/bin/env bash
# Installs the build into a scratch DESTDIR under the prefix /usr, checks that every file is in its
# place, and runs the installed binary: headless on an installed example, and with --window on SDL's
# dummy driver, which proves that it finds its window module where the installation put it.
# usage: install_test.sh BUILD_DIR SOURCE_DIR
set -uo pipefail

build=$(realpath "$1")
source=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root="$work/root"
failed=0
fail() { echo "FAILED: $*"; failed=1; }

DESTDIR="$root" cmake --install "$build" --prefix /usr > "$work/install.log" || fail "cmake --install"

doc=usr/share/doc/vexil
for file in usr/bin/vexil usr/lib/vexil/libvexil_window.so usr/share/man/man1/vexil.1.gz \
    usr/share/applications/vexil.desktop usr/share/icons/hicolor/scalable/apps/vexil.svg \
    $doc/README.md $doc/docs/language.md $doc/docs/screenshot.png; do
    [ -f "$root/$file" ] || fail "$file is not installed"
done
for example in "$source"/examples/*.bas; do
    cmp -s "$example" "$root/$doc/examples/$(basename "$example")" || fail "examples/$(basename "$example") is not installed"
done
grep -qx 'Exec=vexil --window' "$root/usr/share/applications/vexil.desktop" || fail "the desktop entry does not pass --window"

# The manual page is made from --help: every option the binary names is in it.
manual=$(gzip -dc "$root/usr/share/man/man1/vexil.1.gz")
grep -q '^\.TH VEXIL "1"' <<< "$manual" || fail "vexil.1.gz is no manual page of section 1"
for option in $("$root/usr/bin/vexil" --help | grep -o -- '--[a-z]*' | sort -u); do
    grep -qF -- "${option//-/\\-}" <<< "$manual" || fail "the manual page lacks $option"
done

(cd "$work" && "$root/usr/bin/vexil" --headless "$root/$doc/examples/hello.bas" < /dev/null > hello.out)
cmp -s "$source/tests/examples/hello.expected" "$work/hello.out" || fail "the installed binary runs hello.bas differently"

echo exit > "$work/exit.bas"
SDL_VIDEODRIVER=dummy "$root/usr/bin/vexil" --window "$work/exit.bas" < /dev/null 2> "$work/window.err" ||
    fail "the installed binary's window: $(cat "$work/window.err")"

[ "$failed" -eq 0 ] && echo "installed and ran"
exit "$failed"
