#!/usr/bin/env bash
# try_windows_package.sh [FOLDER]: tries what windows_package.sh wrote as a user would, under Wine: unpacked in an empty
# folder with blanks and letters of several alphabets in its name, started from there without anything of this machine's
# build in reach. The sample is decompiled, an image converted by the worker, and the window opened on a virtual screen,
# light, dark and at 200 %. With FOLDER pictures of the screen are kept there.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
./scripts/ensure_packages.sh test windows
. scripts/under_wine.sh
pictures=${1:+$(mkdir -p "$1" && realpath "$1")}
archive=$(ls "$PWD"/dist/tarnwick-*-windows.zip | tail -n 1)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
start_wine "$work/wine" || { echo "Wine does not start here." >&2; exit 1; }

place="$work/any folder ж é"
mkdir -p "$place"
(cd "$place" && python3 -m zipfile -e "$archive" .)
cd "$place"/tarnwick-*
programs=$PWD
[ -f READ_ME_FIRST.txt ] && [ -d licences ] || { echo "what to read first or the licences are missing" >&2; exit 1; }

for program in tarnwick-cli.exe sdk/studiomdl.exe sdk/vtex.exe sdk/vtf2tga.exe; do
  [ -f "$program" ] || { echo "$program is missing" >&2; exit 1; }
done
"$wine" ./tarnwick-cli.exe --version | tr -d '\r'
"$wine" ./tarnwick-cli.exe decompile --quiet --output "out ж put" samples/walker.mdl
[ -s "out ж put/ravelback.qc" ] || { echo "no script was written" >&2; exit 1; }
"$wine" ./tarnwick-cli.exe verify samples/walker.mdl >"$work/verify.log" 2>&1 || { cat "$work/verify.log" >&2; exit 1; }
echo "The sample decompiles and comes back the same."

# Opens the window for ten seconds and looks at the screen before it is closed.
open_window() {  # NAME SETTING...
  local name=$1 code=0
  shift
  env "$@" xvfb-run -a -s "-screen 0 2400x1800x24" bash -c '
    timeout 20 "$1" ./tarnwick.exe samples/walker.mdl & program=$!
    sleep 10
    [ -z "$2" ] || import -window root "$2" 2>/dev/null || true
    wait $program' - "$wine" "${pictures:+$pictures/$name.png}" || code=$?
  [ "$code" -eq 124 ] || { echo "the window ended by itself, with $code" >&2; exit 1; }
}
open_window light QT_SCALE_FACTOR=1
open_window dark QT_SCALE_FACTOR=1 QT_QPA_PLATFORM=windows:darkmode=2
open_window large QT_SCALE_FACTOR=2
echo "The window opens from $programs."
