#!/usr/bin/env bash
# windows_package.sh [--if-made | --untested]: builds everything for Windows, the window and the images too, runs the
# tests under Wine, and writes dist/tarnwick-<version>-windows.zip. What it needs of Qt and of other libraries
# windows_libraries.sh builds once, beforehand. With --if-made, which is for where windows_tests.sh has run just before,
# this script runs no test again, and ends in success, and says so, where those libraries have not been built. With
# --untested it runs no test at all.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
top=$PWD
mode=${1:-}
if ! libraries=$(./scripts/windows_libraries.sh --place); then
  if [ "$mode" = --if-made ]; then
    echo "Skipped the Windows package: scripts/windows_libraries.sh has not built Qt for Windows here."
    exit 0
  fi
  ./scripts/ensure_packages.sh build windows windows-window
  ./scripts/windows_libraries.sh
  libraries=$(./scripts/windows_libraries.sh --place)
fi
./scripts/ensure_packages.sh build windows windows-window

. scripts/under_wine.sh
build=$top/build/windows
build_for_windows "$libraries"

if [ "$mode" != --untested ]; then
  tests=()
  for program in "$build"/bin/*_tests.exe; do
    name=$(basename "$program" .exe)
    [ "$mode" = --if-made ] && [[ " ${logic_tests[*]} " == *" $name "* ]] || tests+=("$name")
  done
  start_wine "$build/wineprefix" || { echo "Wine does not start here." >&2; exit 1; }
  windows_without_screen
  run_windows_tests "$build/bin" "$build" "${tests[@]}"
  if [ "$mode" != --if-made ]; then
    ./scripts/build.sh release tarnwick-cli
    compare_sample "$build/bin/tarnwick-cli.exe" build/release/bin/tarnwick-cli "$build"
  fi
  tell_failed
fi

name=tarnwick-$(sed -n 's/^TARNWICK_VERSION:[A-Z]*=//p' "$build/CMakeCache.txt")-windows
tree=$build/$name
rm -rf "$tree"
cmake --install "$build" --prefix "$tree" --strip >"$build/install.log"
# Whose it is what the programs have inside, and on which terms.
cp -r "$libraries/licences" "$tree/licences"
for package in libz-mingw-w64-dev mingw-w64-common gcc-mingw-w64-base libcli11-dev nlohmann-json3-dev; do
  cp -L "/usr/share/doc/$package/copyright" "$tree/licences/$package.txt"
done
for licence in GPL-3 GPL-2 LGPL-3 LGPL-2.1; do
  cp "/usr/share/common-licenses/$licence" "$tree/licences/$licence.txt"
done
cp cmake/windows/LICENCES.txt "$tree/licences/READ_ME_FIRST.txt"
find "$tree" -name '*.txt' -exec sed -i 's/\r*$/\r/' {} +
mkdir -p dist
rm -f "dist/$name.zip"
(cd "$build" && zip -qr9X "$top/dist/$name.zip" "$name")
ls -l --block-size=K "dist/$name.zip" | awk '{ print $5, $9 }'
