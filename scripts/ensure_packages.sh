#!/usr/bin/env bash
# ensure_packages.sh GROUP...: installs the Debian packages of the named groups of packages.txt that are missing.
# Says what it installs; where it cannot, says what is missing and fails. Quick and silent when nothing is missing.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
wanted=$(for group in "$@"; do sed -n "s/^$group //p" "$here/packages.txt"; done)

if ! command -v dpkg-query >/dev/null; then
  echo "This is not a Debian system; these packages, or what holds the same, are needed: $(echo $wanted)" >&2
  exit 0
fi

missing=()
for package in $wanted; do
  state=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
  [ "$state" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "Missing Debian packages: ${missing[*]}" >&2
    echo "Neither root nor sudo is at hand. Install them with: apt-get install ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

echo "Installing Debian packages: ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
install() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "${missing[@]}" >"$log" 2>&1
}
# The package lists may be old or not there at all: try with what is known, then once more with new lists.
if ! install; then
  if ! "${as_root[@]}" apt-get update >"$log" 2>&1 || ! install; then
    tail -n 20 "$log" >&2
    echo "These packages could not be installed: ${missing[*]}" >&2
    exit 1
  fi
fi
