#!/usr/bin/env bash
# tidy.sh [MINUTES] [BASE]: clang-tidy over the rooms that changed since BASE; fails if it finds something. Without BASE
# it takes where this branch left main, and on main itself the last ten commits, or what the clone has of them. What
# changed is looked at first, then the rest of its rooms; after MINUTES (10) no further file is begun, and it is told
# how many were left out. Reads the commands of the release build, which must be there.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
minutes=${1:-10}
./scripts/ensure_packages.sh tidy

find_base() {
  local head found
  head=$(git rev-parse HEAD)
  for upstream in origin/main main; do
    found=$(git merge-base "$upstream" HEAD 2>/dev/null) || continue
    [ "$found" = "$head" ] || { echo "$found"; return; }
  done
  # The oldest commit that the clone knows, if there are fewer than ten before this one.
  git rev-list --first-parent --max-count=11 HEAD | tail -n 1
}
base=${2:-$(find_base)}
if [ "$base" = "$(git rev-parse HEAD)" ]; then  # a clone of one commit
  changed=$(git ls-files -- '*.cpp' '*.h')
else
  changed=$(git diff --name-only --diff-filter=d "$base" -- '*.cpp' '*.h')
fi
rooms=$(cut -d/ -f1 <<<"$changed" | grep -vxE 'tests|bench|fuzz|samples' | sort -u) || true
[ -n "$rooms" ] || { echo "No room changed since $(git log -1 --format=%h "$base")."; exit 0; }

commands=build/release/compile_commands.json
[ -f "$commands" ] || { echo "There is no release build." >&2; exit 1; }
compiled=$(sed -n "s|^ *\"file\": \"$PWD/\(.*\)\".*|\1|p" "$commands" | grep -v '^build/' | sort -u)
in_rooms=$(grep -E "^($(paste -sd'|' <<<"$rooms"))/" <<<"$compiled") || true
first=$(grep -xF "$changed" <<<"$in_rooms") || true
rest=$(grep -vxF "$changed" <<<"$in_rooms") || true

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# The headers that g++ has precompiled are nothing to clang.
sed -E 's/ -Winvalid-pch -include [^ ]+cmake_pch\.hxx//' "$commands" >"$scratch/compile_commands.json"
export commands=$scratch
look_at() {
  local said=$2/$$
  if [ "$(date +%s)" -ge "$3" ]; then
    echo "$1" >>"$2/left"
    return 0
  fi
  # What the compiler itself warns of is the build's business.
  if ! timeout 300 clang-tidy -p "$commands" --quiet --checks=-clang-diagnostic-* --warnings-as-errors='*' \
    --extra-arg=-Wno-unknown-warning-option "$1" >"$said" 2>"$said.errors"; then
    cat "$said" >>"$2/found"
    grep -vE 'warnings? (generated|treated as error)' "$said.errors" >>"$2/found" || true
  fi
  echo "$1" >>"$2/seen"
}
export -f look_at
touch "$scratch/left" "$scratch/found" "$scratch/seen"
{ echo "$first"; echo "$rest"; } | grep . |
  xargs -P "$(nproc)" -I{} bash -c 'look_at {} '"$scratch $(($(date +%s) + 60 * minutes))"
echo "Looked at $(wc -l <"$scratch/seen") files of $(paste -sd' ' <<<"$rooms"); left out for want of time:" \
  "$(wc -l <"$scratch/left")."
if [ -s "$scratch/found" ]; then
  cat "$scratch/found" >&2
  exit 1
fi
