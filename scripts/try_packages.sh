#!/usr/bin/env bash
# try_packages.sh: tries what package.sh wrote as a user would: each in a bare Debian of its own, where nothing of this
# machine is. The package is installed, decompiles the sample, opens its window and is removed without a trace; the
# portable archive does the same from a folder with blanks in its name. Needs root. The bare system is kept for the next
# time in ~/.cache/tarnwick.
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
roots=()
leave() {
  local each
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
# Decompiles the sample and opens the window for three seconds; `$1` is the folder of the programs, `$2` the sample's.
try_programs() {
  local programs=$1 samples=$2
  inside "$programs/tarnwick-cli" --version
  inside "$programs/tarnwick-cli" decompile --quiet --output "/tmp/out put" "$samples/walker.mdl"
  [ -s "$root/tmp/out put/ravelback.qc" ] || { echo "no script was written" >&2; exit 1; }
  local code=0
  inside QT_QPA_PLATFORM=offscreen timeout 3 "$programs/tarnwick" "$samples/walker.mdl" || code=$?
  [ "$code" -eq 124 ] || { echo "the window ended by itself, with $code" >&2; exit 1; }
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
try_programs /usr/bin /usr/share/doc/tarnwick/samples
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
try_programs "$folder" "${folder}/share/doc/tarnwick/samples"
echo "The portable archive works from $folder."
