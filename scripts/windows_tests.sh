#!/usr/bin/env bash
# windows_tests.sh [--if-installable]: cross-compiles the logic rooms and tarnwick-cli for Windows, runs their tests and
# a decompile of the bundled sample under Wine, and compares the decompiled sources with those of the native program.
# Where windows_libraries.sh has built what images, hulls and packed addons need, they are in; else they are not.
# With --if-installable it ends in success, and says so, where the packages cannot be installed or Wine does not start.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
mode=${1:-}
# Ends the script where the tests cannot be run for the reason `$1`.
cannot_run() {
  [ "$mode" = --if-installable ] || { echo "$1" >&2; exit 1; }
  echo "Skipped the Windows tests: $1"
  exit 0
}

. scripts/under_wine.sh
timeout 300 ./scripts/ensure_packages.sh build windows || cannot_run "Their packages cannot be installed here."
if libraries=$(./scripts/windows_libraries.sh --place) && timeout 300 ./scripts/ensure_packages.sh windows-window; then
  # In the folder of the package, which has the same and more to build.
  build=$PWD/build/windows
  build_for_windows "$libraries" "${logic_tests[@]}" tarnwick-cli
  tests=("${logic_tests[@]}")
else
  build=$PWD/build/windows-cross
  ./scripts/build.sh windows-cross
  tests=($(cd "$build/bin" && ls ./*_tests.exe | xargs -n 1 basename -s .exe))
fi
./scripts/build.sh release tarnwick-cli

start_wine "$build/wineprefix" || cannot_run "Wine does not start here."
windows_without_screen
run_windows_tests "$build/bin" "$build" "${tests[@]}"
compare_sample "$build/bin/tarnwick-cli.exe" build/release/bin/tarnwick-cli "$build"
tell_failed
