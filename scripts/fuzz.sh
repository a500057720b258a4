#!/usr/bin/env bash
# fuzz.sh SECONDS [NAME...]: builds the fuzz targets (all, or those named) and runs each for so long, from its corpus
# on. What breaks one is kept in build/asan/found/NAME, with what the target said beside it.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
seconds=${1:?how many seconds for each target?}
shift
./scripts/ensure_packages.sh build asan
if [ $# -gt 0 ]; then
  ./scripts/build.sh asan "${@/%/_fuzz}"
  targets=("$@")
else
  ./scripts/build.sh asan fuzz_targets
  targets=()
  for corpus in fuzz/corpus/*/; do
    name=$(basename "$corpus")
    [ ! -x "build/asan/bin/${name}_fuzz" ] || targets+=("$name")
  done
  # A target without a corpus would be left out here in silence.
  built=$(find build/asan/bin -maxdepth 1 -name '*_fuzz' | wc -l)
  [ "$built" -eq ${#targets[@]} ] || { echo "$built fuzz targets, but ${#targets[@]} with a corpus." >&2; exit 1; }
fi

run() {
  local name=$1 seconds=$2 new found log
  new=$(mktemp -d)
  found=build/asan/found/$name
  log=$found/log
  mkdir -p "$found"
  if "build/asan/bin/${name}_fuzz" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -artifact_prefix="$found/" \
    "$new" "fuzz/corpus/$name" >"$log" 2>&1; then
    echo "$name: $(sed -n 's/^Done \([0-9]*\) runs.*/\1 runs/p' "$log")"
  else
    echo "$name failed:"
    grep -vE '^#[0-9]+.*(NEW|REDUCE|pulse|RELOAD)' "$log" | tail -n 30
    rm -rf "$new"
    return 1
  fi
  rm -rf "$new"
}
export -f run
# As many at a time as there are cores; each says its lines in one go when it is done.
printf '%s\0' "${targets[@]}" | xargs -0 -P "$(nproc)" -I{} bash -c 'said=$(run {} '"$seconds"') && code=0 || code=1; echo "$said"; exit $code'
