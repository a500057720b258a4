#!/usr/bin/env bash
# try_windows_package.sh [FOLDER]: tries what windows_package.sh wrote as a user would, under Wine: unpacked in an empty
# folder with blanks and letters of several alphabets in its name, started from there without anything of this machine's
# build in reach. The programs are looked into; the sample is decompiled, compiled and verified, a texture is written in
# every format and made a material by the worker and our own vtex, damaged files and wrong words are told; the windows are
# opened on a virtual screen of a laptop's size, light and dark, and at 200 %. With FOLDER pictures of the screen are kept
# there.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
./scripts/ensure_packages.sh test windows windows-window windows-try
. scripts/under_wine.sh
top=$PWD
work=$(mktemp -d)
server=$(command -v wineserver || ls /usr/lib/wine/wineserver64)
trap '"$server" -k 2>/dev/null || true; rm -rf "$work"' EXIT
pictures=${1:-$work/pictures}
mkdir -p "$pictures"
pictures=$(realpath "$pictures")
archive=$(ls -t "$PWD"/dist/tarnwick-*-windows.zip | head -n 1)
start_wine "$work/wine" || { echo "Wine does not start here." >&2; exit 1; }
# Sets value `$2` of type `$3` in Wine's registry at `$1` to `$4`.
set_value() { "$wine" reg add "$1" /v "$2" /t "$3" /d "$4" /f >/dev/null 2>&1; }

# Ends the script with the reason.
wrong() {
  echo "$*" >&2
  exit 1
}

place="$work/any folder ж é"
mkdir -p "$place"
(cd "$place" && python3 -m zipfile -e "$archive" .)
cd "$place"/tarnwick-*
[ -f READ_ME_FIRST.txt ] && [ -f licences/qt6-base.txt ] || wrong "What to read first or the licences are missing."

consoles=(tarnwick-cli.exe tarnwick-imageworker.exe sdk/studiomdl.exe sdk/vtex.exe sdk/vtf2tga.exe)
windows=(tarnwick.exe sdk/hlmv.exe)
for program in "${consoles[@]}" "${windows[@]}"; do
  [ -f "$program" ] || wrong "$program is missing."
  for type in group_icon version 24; do  # 24: the manifest
    [ -n "$(wrestool --list --type="$type" "$program" 2>/dev/null)" ] || wrong "$program has no $type inside."
  done
  x86_64-w64-mingw32-objdump -p "$program" >"$work/headers"
  grep -E 'DLL Name' "$work/headers" | grep -iE 'lib(gcc|stdc|winpthread|ssp)|qt6' &&
    wrong "$program needs a library that is not of Windows itself."
  grep -qF "$top/" "$program" && wrong "$program names a folder of the clone that it was built in."
done
for program in "${windows[@]}"; do
  x86_64-w64-mingw32-objdump -p "$program" >"$work/headers"
  grep -q 'Windows GUI' "$work/headers" || wrong "$program opens a console."
done
echo "All programs are there, each with its icon, version and manifest."

cli=("$wine" ./tarnwick-cli.exe)
# Runs what follows, whose words are shown only if it fails.
quietly() {
  timeout 300 "$@" >"$work/said" 2>&1 || { cat "$work/said" >&2; wrong "Failed: $*"; }
}
"${cli[@]}" --version | tr -d '\r'
quietly "${cli[@]}" decompile --output "out ж put" samples/walker.mdl
[ -s "out ж put/ravelback.qc" ] || wrong "No script was written."
grep -q $'\r$' "out ж put/ravelback.qc" || wrong "The script's lines do not end as Windows' do."
quietly "${cli[@]}" verify samples/walker.mdl
mkdir "game ж"
printf '"GameInfo"\n{\n\tgame "tried"\n\tFileSystem { SearchPaths { game |gameinfo_path|. } }\n}\n' >"game ж/gameinfo.txt"
quietly "${cli[@]}" compile --game "game ж" "out ж put/ravelback.qc"
[ -s "game ж/models/samples/walker.mdl" ] || wrong "No model was written."
quietly "$wine" ./sdk/studiomdl.exe -nopause -game "game ж" "out ж put/ravelback.qc"
echo "The sample decompiles, compiles and comes back the same."
# The exit code of what follows is to be `$1`, and its words to hold `$2`.
refuses() {
  local code=0 wanted=$1 words=$2
  shift 2
  timeout 60 "$@" >"$work/said" 2>&1 || code=$?
  [ "$code" -eq "$wanted" ] && grep -qF "$words" "$work/said" || { cat "$work/said" >&2; wrong "Ended with $code: $*"; }
}
head -c 5000 samples/walker.mdl >"damaged ж.mdl"
refuses 1 'damaged ж.mdl' "${cli[@]}" decompile -o nothing "damaged ж.mdl"
refuses 2 '"decompil"' "${cli[@]}" decompil samples/walker.mdl
refuses 2 'unknown option --verison' "$wine" ./tarnwick.exe --verison
refuses 2 'unknown switch -gmae' "$wine" ./sdk/hlmv.exe -gmae x
refuses 1 'no window for OpenGL can be made' "${cli[@]}" picture -o picture.png samples/walker.mdl  # without a screen
refuses 1 "con.sc" "${cli[@]}" project set --new con.sc "Reference SMD" a.smd
[ ! -e nothing ] && [ ! -e con.sc ] || wrong "A refused file left something behind."
echo "Damaged files and wrong words are told."
"${cli[@]}" vtf --list-formats >"$work/formats"
for format in png jpg tga bmp gif dds psd tiff; do
  grep -q "^$format\b" "$work/formats" || continue
  quietly "${cli[@]}" vtf -o images --format "$format" samples/materials/models/walker/walker_skin.vtf
done
echo "Images written: $(ls images | paste -sd' ')"
for image in images/*; do
  quietly "${cli[@]}" material --game "game ж" -d "${image##*.}" "$image"
  [ -s "game ж/materials/models/${image##*.}/walker_skin.vtf" ] || wrong "$image became no texture."
done
echo "Each of them becomes a material."

# A window that nobody sees is one for a screen, which Wine looks for when it starts.
"$server" -k || true
quietly xvfb-run -a "${cli[@]}" picture --size 400x300 --game "game ж" -o "$pictures/picture.png" samples/walker.mdl
[ "$(identify -format '%wx%h' "$pictures/picture.png")" = 400x300 ] &&
  [ "$(identify -format %k "$pictures/picture.png")" -gt 50 ] || wrong "The sample's picture is empty."
echo "The sample is drawn."

# Opens a program's window, NAME for its picture, waits until something stands on the screen, and leaves it there for a
# while: it must not end by itself.
open_window() {  # NAME SCREEN PROGRAM ARGUMENT...
  local name=$1 screen=$2
  shift 2
  xvfb-run -a -s "-screen 0 ${screen}x24" bash -c '
    picture=$1
    shift
    "$@" & program=$!
    for ((tries = 0; tries < 60; ++tries)); do
      sleep 2
      kill -0 $program 2>/dev/null || { wait $program; echo "the window ended by itself, with $?" >&2; exit 1; }
      import -window root "$picture" && [ "$(identify -format %k "$picture")" -gt 50 ] && break
    done
    [ "$tries" -lt 60 ] || { echo "no window within two minutes" >&2; exit 1; }
    sleep 5
    import -window root "$picture"
    kill -0 $program
    code=$?
    kill $program
    exit $code' - "$pictures/$name.png" "$wine" "$@" 2>"$work/said" || { cat "$work/said" >&2; wrong "$1 ($name)"; }
  convert "$pictures/$name.png" -trim +repage "$pictures/$name.png"
}
open_pair() {  # NAME SCREEN
  open_window "$1" "$2" ./tarnwick.exe samples/walker.mdl
  open_window "viewer-$1" "$2" ./sdk/hlmv.exe samples/walker.mdl
}
laptop=1366x768
open_pair light "$laptop"
set_value 'HKCU\Software\Microsoft\Windows\CurrentVersion\Themes\Personalize' AppsUseLightTheme REG_DWORD 0
open_pair dark "$laptop"
set_value 'HKCU\Control Panel\Desktop' LogPixels REG_DWORD 192  # 200 %, which Wine reads when it starts
"$server" -k || true
open_pair large 2732x1536
echo "The windows open."
