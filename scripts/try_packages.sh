#!/usr/bin/env bash
# try_packages.sh [FOLDER]: tries what package.sh wrote as a user would: each in a bare Debian of its own, where nothing
# of this machine is. The package is installed, takes the sample apart, proves that it comes back the same, writes a
# texture in every format, tells a damaged file, opens its windows on a virtual screen, also at 200 %, and is removed
# without a trace; the portable archive does the same from a folder with blanks in its name. With FOLDER pictures of the
# screen are kept there. Needs root. The bare system is kept for the next time in ~/.cache/tarnwick.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
./scripts/ensure_packages.sh try
cache=${XDG_CACHE_HOME:-$HOME/.cache}/tarnwick
base=$cache/bare-bookworm
mirror=$(apt-get indextargets --format '$(SITE)' 'Codename: bookworm' | head -n 1)
if [ ! -e "$base.done" ]; then
  rm -rf "$base"
  mkdir -p "$cache"
  debootstrap --variant=minbase bookworm "$base" "$mirror" >"$cache/debootstrap.log" 2>&1 ||
    { tail -n 5 "$cache/debootstrap.log" >&2; exit 1; }
  touch "$base.done"
fi

root=
work=$(mktemp -d)
pictures=${1:-$work/pictures}
mkdir -p "$pictures"
pictures=$(realpath "$pictures")
roots=()
screen=
leave() {
  local each
  [ -z "$screen" ] || kill "$screen" 2>/dev/null
  for each in "${roots[@]}"; do umount "$each/proc" || return; done
  rm -rf "$work"
}
trap leave EXIT
new_root() {
  root=$work/$1
  cp -a "$base" "$root"
  cp /etc/resolv.conf "$root/etc/" 2>/dev/null || true
  cp -a /etc/apt/. "$root/etc/apt/"
  mount -t proc proc "$root/proc"  # programs and the loader ask it where they lie
  roots+=("$root")
}
inside() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root DEBIAN_FRONTEND=noninteractive "$@"; }
install() { inside sh -c 'apt-get update && apt-get install -y --no-install-recommends "$@"' - "$@" >"$work/apt.log" 2>&1 || { tail -n 5 "$work/apt.log" >&2; exit 1; }; }
# Runs what follows inside, whose words are shown only if it fails.
quietly() { inside "$@" >"$work/said" 2>&1 || { cat "$work/said" >&2; echo "Failed: $*" >&2; exit 1; }; }
# Opens a window inside on a screen of its own until something stands there, and a while longer: it must not end by itself.
open_window() {  # NAME SCREEN SCALE PROGRAM ARGUMENT...
  local name=$1 size=$2 scale=$3 display code=0 tries program
  shift 3
  rm -f "$work/display"
  # Its socket without a name in the file system is reached from another root too.
  Xvfb -ac -nolisten tcp -screen 0 "${size}x24" -displayfd 3 3>"$work/display" 2>"$work/xvfb.log" & screen=$!
  for ((tries = 0; tries < 50; ++tries)); do [ ! -s "$work/display" ] || break; sleep 0.2; done
  display=:$(<"$work/display")
  inside DISPLAY="$display" QT_SCALE_FACTOR="$scale" "$@" >"$work/said" 2>&1 & program=$!
  for ((tries = 0; tries < 30; ++tries)); do
    sleep 1
    kill -0 "$program" 2>/dev/null || break
    import -display "$display" -window root "$pictures/$name.png"
    [ "$(identify -format %k "$pictures/$name.png")" -le 50 ] || break
  done
  sleep 3
  import -display "$display" -window root "$pictures/$name.png"
  kill "$program" 2>/dev/null || code=1
  { wait "$program"; kill "$screen"; wait "$screen"; } 2>/dev/null || true
  screen=
  [ "$code" -eq 0 ] && [ "$tries" -lt 30 ] || { cat "$work/said" >&2; echo "no window: $*" >&2; exit 1; }
}
# Does the main jobs with the sample and opens both windows; `$1` is the folder of the programs, `$2` the sample's, `$3`
# that of the tools, `$4` begins the pictures' names.
try_programs() {
  local programs=$1 samples=$2 tools=$3 name=$4 code=0 format
  inside "$programs/tarnwick-cli" --version
  quietly "$programs/tarnwick-cli" decompile --output "/tmp/out put" "$samples/walker.mdl"
  [ -s "$root/tmp/out put/ravelback.qc" ] || { echo "no script was written" >&2; exit 1; }
  quietly "$programs/tarnwick-cli" compile --game "/tmp/out put/game" "/tmp/out put/ravelback.qc"
  [ -s "$root/tmp/out put/game/models/samples/walker.mdl" ] || { echo "no model was written" >&2; exit 1; }
  quietly "$programs/tarnwick-cli" verify "$samples/walker.mdl"
  for format in png jpg tga bmp gif dds psd tiff exr webp; do
    quietly "$programs/tarnwick-cli" vtf -o "/tmp/out put/images" --format "$format" \
      "$samples/materials/models/walker/walker_skin.vtf"
  done
  head -c 5000 "$root$samples/walker.mdl" >"$root/tmp/out put/damaged.mdl"
  inside "$programs/tarnwick-cli" decompile -o /tmp/nothing "/tmp/out put/damaged.mdl" >"$work/said" 2>&1 || code=$?
  [ "$code" -eq 1 ] && grep -q 'damaged.mdl' "$work/said" || { cat "$work/said" >&2; echo "ended with $code" >&2; exit 1; }
  open_window "$name" 1366x768 1 "$programs/tarnwick" "$samples/walker.mdl"
  open_window "$name-viewer" 1366x768 1 "$tools/hlmv.exe" "$samples/walker.mdl"
  open_window "$name-large" 2732x1536 2 "$programs/tarnwick" "$samples/walker.mdl"
  rm -rf "$root/tmp/out put"
}
# A list of all files but those of the package manager and of a home folder.
files() { (cd "$root" && find . -xdev \( -path ./proc -o -path ./sys -o -path ./var/lib -o -path ./var/cache -o -path ./var/log -o -path ./tmp -o -path ./root \) -prune -o -print | sort); }

package=$(ls "$PWD"/dist/tarnwick_*_amd64.deb | tail -n 1)
new_root package
cp "$package" "$root/tmp/tarnwick.deb"
install $(dpkg-deb -f "$package" Depends | tr ',' '\n' | sed 's/(.*//; s/|.*//')
files >"$work/before"
install /tmp/tarnwick.deb
try_programs /usr/bin /usr/share/doc/tarnwick/samples /usr/libexec/tarnwick/sdk package
inside test -e /usr/share/man/man1/tarnwick-cli.1.gz -o -e /etc/dpkg/dpkg.cfg.d/docker || { echo "no man page" >&2; exit 1; }
inside apt-get purge -y tarnwick >"$work/apt.log" 2>&1
files >"$work/after"
diff "$work/before" "$work/after" || { echo "the package left these files" >&2; exit 1; }
echo "The package installs, works, and leaves nothing behind."

archive=$(ls "$PWD"/dist/tarnwick-*-linux-x86_64.tar.xz | tail -n 1)
new_root portable
install libgl1 libegl1 libopengl0 libfontconfig1 libfreetype6 libx11-6 libx11-xcb1 libxcb1 libglib2.0-0
mkdir -p "$root/opt/any folder"
tar -C "$root/opt/any folder" -xJf "$archive"
folder="/opt/any folder/$(ls "$root/opt/any folder")"
try_programs "$folder" "${folder}/share/doc/tarnwick/samples" "$folder/sdk" portable
echo "The portable archive works from $folder."
