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

wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
bin=build/windows-cross/bin
# A Windows folder of its own, and no words of Wine's.
export WINEPREFIX=$PWD/build/windows-cross/wineprefix WINEDEBUG=-all
unset DISPLAY
timeout 120 "$wine" cmd /c exit >/dev/null 2>&1 || cannot_run "Wine does not start here."

failed=()
for tests in "$bin"/*_tests.exe; do
  name=$(basename "$tests" .exe)
  log=build/windows-cross/$name.log
  if timeout 300 "$wine" "$tests" >"$log" 2>&1; then
    echo "$name: $(grep -a 'PASSED' "$log" | tr -d '\r')"
  else
    grep -a -E 'Failure|error:|FAILED|Expected|Actual|Which is' "$log" | tr -d '\r' | head -n 60 >&2 || true
    failed+=("$name")
  fi
done

# Each in a folder of its own under the same relative path, since the script names where it lies.
top=$PWD native=build/windows-cross/native windows=build/windows-cross/windows
rm -rf "$native" "$windows"
mkdir -p "$native" "$windows"
(cd "$native" && "$top/build/release/bin/tarnwick-cli" decompile --quiet --output out "$top/samples/walker.mdl")
if ! (cd "$windows" && "$wine" "$top/$bin/tarnwick-cli.exe" decompile --quiet --output out "$top/samples/walker.mdl"); then
  failed+=("the sample does not decompile")
fi
# The same files but for the platform's line ends.
find "$windows" -type f -exec sed -i 's/\r$//' {} +
if diff -r "$native" "$windows"; then
  echo "The sample decompiles alike: $(find "$windows" -type f | wc -l) files."
else
  failed+=("the sample's sources differ")
fi

if [ ${#failed[@]} -gt 0 ]; then
  printf 'Failed under Wine: %s\n' "${failed[@]}" >&2
  exit 1
fi
