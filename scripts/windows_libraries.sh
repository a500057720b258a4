#!/usr/bin/env bash
# windows_libraries.sh [--place | LIBRARY...]: builds Qt and the libraries of the window and the images for Windows, from the source
# packages of the Debian that this machine takes its packages from. Once: what is there and made of the same sources, by
# the same steps, is left alone. They lie outside the project, in TARNWICK_WINDOWS_LIBRARIES or else in
# ~/.cache/tarnwick/windows-libraries (with XDG_CACHE_HOME in place of ~/.cache), and need about 3 GB while they are
# built; what was broken off goes on where it was. With --place it only writes the folder to install from, and fails
# unless everything is in it; with names it builds no more than those. TARNWICK_JOBS is how many files it compiles at once.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
home=${TARNWICK_WINDOWS_LIBRARIES:-${XDG_CACHE_HOME:-$HOME/.cache}/tarnwick/windows-libraries}
made=$home/made stamps=$home/stamps sources=$home/sources work=$home/work
jobs=${TARNWICK_JOBS:-$(nproc)}
libraries=(qt libsquish libpng libjpeg tiff webp imath freeimage qhull lzma)
[ $# -eq 0 ] || [ "$1" = --place ] || libraries=("$@")

declare -A package=([qt]=qt6-base [libsquish]=libsquish [libpng]=libpng1.6 [libjpeg]=libjpeg-turbo [tiff]=tiff
  [webp]=libwebp [imath]=imath [freeimage]=freeimage [qhull]=qhull [lzma]=xz-utils)

# The machine's own lists are left alone: these are for sources, and lie in the cache.
apt_options=(-o Dir::Etc::sourcelist="$home/apt/sources.list" -o Dir::Etc::sourceparts=/dev/null
  -o Dir::State::lists="$home/apt/lists" -o Dir::Cache="$home/apt/cache" -o APT::Sandbox::User=
  -o APT::Get::Only-Source=true)

update_lists() {
  mkdir -p "$home"/apt/lists/partial "$home"/apt/cache/archives/partial
  apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT) $(ORIGIN)' 'Created-By: Packages' |
    awk '$4 == "Debian" && !seen[$0]++ { print "deb-src", $1, $2, $3 }' >"$home/apt/sources.list"
  [ -s "$home/apt/sources.list" ] || { echo "This machine's package lists name no archive of Debian's." >&2; exit 1; }
  apt-get "${apt_options[@]}" update >"$home/apt/log" 2>&1 || { tail -n 5 "$home/apt/log" >&2; exit 1; }
}

# Fetches the newest source package of library `$1` that the archive gives out, and unpacks it to work/NAME. A fix that
# is listed may have left its archive already: then the one before it is taken, and said.
fetch() {
  local name=${package[$1]} version asked=
  [ -s "$home/apt/sources.list" ] || update_lists
  mkdir -p "$sources" "$work"
  for version in $(apt-cache "${apt_options[@]}" showsrc "$name" | sed -n 's/^Version: //p' | sort -ruV); do
    if (cd "$sources" && apt-get "${apt_options[@]}" source --download-only "$name=$version") >"$home/apt/log" 2>&1; then
      [ -z "$asked" ] || echo "$name $asked is listed but not given out: $version instead."
      rm -rf "${work:?}/$1" "${work:?}/$1-build"
      dpkg-source --no-check -x "$sources/${name}_${version#*:}.dsc" "$work/$1" >"$home/apt/log" 2>&1
      return
    fi
    asked=${asked:-$version}
  done
  tail -n 5 "$home/apt/log" >&2
  echo "The source package $name cannot be fetched." >&2
  exit 1
}

# Configures and builds `$1` of the sources in folder $2, and installs it into the common folder. Chained by hand: the
# shell does not end at a step that fails where its caller asks whether it did.
build() {
  local name=$1 from=$2
  shift 2
  cmake -S "$from" -B "$work/$name-build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF \
    -DCMAKE_TOOLCHAIN_FILE="$home/toolchain/windows_cross.cmake" -DTARNWICK_WINDOWS_LIBRARIES="$made" \
    -DCMAKE_PREFIX_PATH="$made" -DCMAKE_INSTALL_PREFIX="$made" "$@" &&
    nice -n 15 cmake --build "$work/$name-build" -j "$jobs" &&
    cmake --install "$work/$name-build"
}

# What reads files from strangers ends on an overrun.
hardened=(-DCMAKE_C_FLAGS=-fstack-protector-strong -DCMAKE_CXX_FLAGS=-fstack-protector-strong)

build_qt() {
  local feature off=()
  for feature in sql network dbus printsupport pkg_config tabletevent system_zlib system_pcre2 system_freetype \
    system_harfbuzz system_png system_jpeg; do
    off+=("-DFEATURE_$feature=OFF")  # tabletevent: Debian's package has a header of it left out
  done
  build qt "$work/qt" -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(gcc -print-multiarch)/cmake" \
    -DQT_BUILD_TESTS=OFF -DQT_BUILD_EXAMPLES=OFF -DINPUT_opengl=desktop "${off[@]}"
}

build_libsquish() {
  build libsquish "$work/libsquish" "${hardened[@]}" -DBUILD_SQUISH_WITH_OPENMP=OFF -DBUILD_SQUISH_EXTRA=OFF
}

build_libpng() {
  build libpng "$work/libpng" "${hardened[@]}" -DPNG_SHARED=OFF -DPNG_TESTS=OFF
}

build_libjpeg() {
  build libjpeg "$work/libjpeg" "${hardened[@]}" -DENABLE_SHARED=OFF -DWITH_SIMD=OFF -DWITH_TURBOJPEG=OFF
}

build_tiff() {
  build tiff "$work/tiff" "${hardened[@]}" -Dtiff-tools=OFF -Dtiff-tests=OFF -Dtiff-contrib=OFF -Dtiff-docs=OFF \
    -Dlzma=OFF -Dwebp=OFF -Dzstd=OFF -Dlibdeflate=OFF -Djbig=OFF -Dlerc=OFF
}

build_webp() {
  local tool off=()
  for tool in ANIM_UTILS CWEBP DWEBP GIF2WEBP IMG2WEBP VWEBP WEBPINFO WEBPMUX EXTRAS; do
    off+=("-DWEBP_BUILD_$tool=OFF")
  done
  build webp "$work/webp" "${hardened[@]}" "${off[@]}"
}

build_imath() {
  build imath "$work/imath" -DBUILD_TESTING=OFF -DIMATH_INSTALL_PKG_CONFIG=OFF
}

build_freeimage() {
  build freeimage "$home/toolchain/windows_libraries/freeimage" "${hardened[@]}" -DFREEIMAGE_SOURCES="$work/freeimage"
}

build_qhull() {
  build qhull "$work/qhull" "${hardened[@]}" -DBUILD_STATIC_LIBS=ON -DBUILD_SHARED_LIBS=OFF
}

build_lzma() {
  build lzma "$work/lzma" "${hardened[@]}" -DBUILD_TESTING=OFF
}

# What library `$1` is made of and by.
inputs() {
  declare -f build "build_$1"
  cat cmake/windows_cross.cmake
  if [ -d "cmake/windows_libraries/$1" ]; then cat cmake/windows_libraries/"$1"/*; fi
  x86_64-w64-mingw32-g++-posix --version
}

is_made() {
  [ -f "$stamps/$1" ] && [ "$(head -n 1 "$stamps/$1")" = "$(inputs "$1" | sha256sum)" ]
}

if [ "${1:-}" = --place ]; then
  for library in "${libraries[@]}"; do is_made "$library" || exit 1; done
  echo "$made"
  exit 0
fi

./scripts/ensure_packages.sh windows-window
mkdir -p "$stamps" "$work" "$home/toolchain"
# Two at once would write the same files; the second finds everything made.
exec 9>"$home/lock"
flock 9
# A build that goes on later may do so from another clone of this project, so what it was begun with lies beside it.
cp -ru cmake/windows_cross.cmake cmake/windows_cross cmake/windows_libraries "$home/toolchain/"
for library in "${libraries[@]}"; do
  is_made "$library" && continue
  echo "Building $library for Windows in $home ..."
  started=$SECONDS
  wanted=$(inputs "$library" | sha256sum)
  # What was broken off goes on where it was.
  if [ "$(cat "$work/$library.begun" 2>/dev/null)" != "$wanted" ]; then
    fetch "$library"
    echo "$wanted" >"$work/$library.begun"
  fi
  log=$work/$library.log
  if ! "build_$library" >"$log" 2>&1; then
    grep -E 'error|Error|FAILED' "$log" | head -n 20 >&2 || tail -n 20 "$log" >&2
    echo "$library cannot be built; all that it said is in $log." >&2
    exit 1
  fi
  # With them the licences of what goes into the programs.
  mkdir -p "$made/licences"
  cp "$work/$library/debian/copyright" "$made/licences/${package[$library]}.txt"
  { echo "$wanted"; echo "${package[$library]} $(dpkg-parsechangelog -l "$work/$library/debian/changelog" -S Version)"; } \
    >"$stamps/$library"
  echo "Built $library in $((SECONDS - started)) s."
done
