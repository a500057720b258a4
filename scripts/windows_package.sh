#!/usr/bin/env bash
# windows_package.sh [--if-made]: builds everything for Windows, the window and the images too, runs the tests under Wine,
# and writes dist/tarnwick-<version>-windows.zip. What it needs of Qt and of other libraries windows_libraries.sh builds
# once, beforehand; with --if-made this script ends in success, and says so, where that has not been done.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
top=$PWD
if ! libraries=$(./scripts/windows_libraries.sh --place); then
  if [ "${1:-}" = --if-made ]; then
    echo "Skipped the Windows package: scripts/windows_libraries.sh has not built Qt for Windows here."
    exit 0
  fi
  ./scripts/ensure_packages.sh build windows windows-window
  ./scripts/windows_libraries.sh
  libraries=$(./scripts/windows_libraries.sh --place)
fi
./scripts/ensure_packages.sh build windows windows-window

build=$top/build/windows
mkdir -p "$build" dist
build_all() {
  cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_TOOLCHAIN_FILE="$top/cmake/windows_cross.cmake" \
    -DTARNWICK_WINDOWS_LIBRARIES="$libraries" -DCMAKE_PREFIX_PATH="$libraries" -DQT_HOST_PATH=/usr \
    -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(gcc -print-multiarch)/cmake" && cmake --build "$build"
}
started=$SECONDS
if ! build_all >"$build/build.log" 2>&1; then
  grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking|Automatic)' "$build/build.log" >&2 || true
  echo "The Windows build failed." >&2
  exit 1
fi
echo "Built for Windows in $((SECONDS - started)) s."

./scripts/build.sh release tarnwick-cli
. scripts/under_wine.sh
start_wine "$build/wineprefix" || { echo "Wine does not start here." >&2; exit 1; }
export QT_QPA_PLATFORM=offscreen
run_windows_tests "$build/bin" "$build"
compare_sample "$build/bin/tarnwick-cli.exe" build/release/bin/tarnwick-cli "$build"
tell_failed

name=tarnwick-$(sed -n 's/^TARNWICK_VERSION:[A-Z]*=//p' "$build/CMakeCache.txt")-windows
tree=$build/$name
rm -rf "$tree"
cmake --install "$build" --prefix "$tree" --strip >"$build/install.log"
# Whose it is what the programs have inside, and on which terms.
cp -r "$libraries/licences" "$tree/licences"
for package in libz-mingw-w64-dev mingw-w64-common gcc-mingw-w64-base libcli11-dev nlohmann-json3-dev; do
  cp -L "/usr/share/doc/$package/copyright" "$tree/licences/$package.txt"
done
find "$tree" -name '*.txt' -exec sed -i 's/\r*$/\r/' {} +
rm -f "dist/$name.zip"
(cd "$build" && zip -qr9X "$top/dist/$name.zip" "$name")
ls -l --block-size=K "dist/$name.zip" | awk '{ print $5, $9 }'
