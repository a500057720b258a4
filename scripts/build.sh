#!/usr/bin/env bash
# build.sh PRESET [TARGET...]: configures and builds; quiet unless something fails. Quick when nothing changed.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=$1
shift
log=build/$preset/build.log
mkdir -p "build/$preset"
started=$SECONDS
if ! cmake --preset "$preset" >"$log" 2>&1; then
  cat "$log" >&2
  echo "Configuring the $preset build failed." >&2
  exit 1
fi
targets=()
[ $# -gt 0 ] && targets=(--target "$@")
if ! cmake --build --preset "$preset" "${targets[@]}" >"$log" 2>&1; then
  grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking|Automatic)' "$log" >&2 || true
  echo "The $preset build failed." >&2
  exit 1
fi
took=$((SECONDS - started))
[ "$took" -lt 3 ] || echo "Built $preset in $took s."
