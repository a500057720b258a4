#!/usr/bin/env bash
# build.sh PRESET [TARGET...]: configures and builds; quiet unless something fails. Quick when nothing changed.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=$1
shift
log=build/$preset/build.log
mkdir -p "build/$preset"
started=$SECONDS
configure() {
  cmake --preset "$preset" >"$log" 2>&1 || return 1
  # A folder from before the preset changed its compiler loses the preset's other values in the first pass.
  ! grep -q 'require your cache to be deleted' "$log" || cmake --preset "$preset" >"$log" 2>&1
}
if ! configure; then
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
