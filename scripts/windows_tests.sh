#!/usr/bin/env bash
# windows_tests.sh [--if-installable]: cross-compiles the logic rooms and tarnwick-cli for Windows, runs their tests and
# a decompile of the bundled sample under Wine, and compares the decompiled sources with those of the native program.
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

timeout 300 ./scripts/ensure_packages.sh build windows || cannot_run "Their packages cannot be installed here."
./scripts/build.sh windows-cross
./scripts/build.sh release tarnwick-cli

. scripts/under_wine.sh
build=$PWD/build/windows-cross
start_wine "$build/wineprefix" || cannot_run "Wine does not start here."
run_windows_tests "$build/bin" "$build"
compare_sample "$build/bin/tarnwick-cli.exe" build/release/bin/tarnwick-cli "$build"
tell_failed
