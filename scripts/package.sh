#!/usr/bin/env bash
# package.sh: builds the program without its tests and writes the packages for Linux into dist/: a Debian package, and
# an archive that runs from any folder with its libraries inside. Says each file's size.
set -euo pipefail
trap 'echo "package.sh: stopped at line $LINENO" >&2' ERR

cd "$(dirname "${BASH_SOURCE[0]}")/.."
top=$PWD
./scripts/ensure_packages.sh build package
mkdir -p dist

build() {  # FOLDER OPTION...: a build of its own, so that neither is made of the other's settings
  local folder=$1
  shift
  cmake -S . -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNWICK_TESTS=OFF "$@" >"$folder.log" 2>&1 &&
    cmake --build "$folder" >>"$folder.log" 2>&1 || { tail -n 40 "$folder.log" >&2; exit 1; }
}

# What the installed package shows a person beside the programs: made by asking the programs.
make_documents() {
  local bin=$1 made=$2
  rm -rf "$made"
  mkdir -p "$made/man/man1" "$made/completions"
  help2man --no-info --no-discard-stderr --name 'tools for content of games on the Source engine' \
    "$bin/tarnwick-cli" >"$made/man/man1/tarnwick-cli.1"
  help2man --no-info --no-discard-stderr --name 'window with tools for content of games on the Source engine' \
    "$bin/tarnwick" >"$made/man/man1/tarnwick.1"
  gzip -9n "$made"/man/man1/*
  "$bin/tarnwick-cli" completions bash >"$made/completions/tarnwick-cli.bash"
  "$bin/tarnwick-cli" completions zsh >"$made/completions/_tarnwick-cli"
  "$bin/tarnwick-cli" completions fish >"$made/completions/tarnwick-cli.fish"
  debian_changelog | gzip -9nc >"$made/changelog.gz"
}

# The newest release of CHANGELOG.md, in the form that Debian's tools read.
debian_changelog() {
  awk -v wide=74 '
    function flush(  start, line, end) {
      for (start = "  * "; length(item) > 0; start = "    ") {
        line = substr(item, 1, wide + 1)
        end = length(item) <= wide ? length(item) : match(line, / [^ ]*$/) ? RSTART - 1 : wide
        print start substr(item, 1, end)
        item = substr(item, end + 1)
        sub(/^ /, "", item)
      }
    }
    /^## / { if (version != "") exit; version = $2; gsub(/-/, "~", version)
             print "tarnwick (" version ") bookworm; urgency=medium\n"; next }
    /^- / { flush(); item = substr($0, 3); next }
    /^  / { item = item " " substr($0, 3) }
    END { flush() }' CHANGELOG.md
  printf '\n -- The owners of Tarnwick <maintainers@tarnwick.org>  %s\n' "$(date -R -r CHANGELOG.md)"
}

mkdir -p build
export QT_QPA_PLATFORM=offscreen
build build/package -DCMAKE_INSTALL_PREFIX=/usr
make_documents build/package/bin build/package/package
cmake build/package >/dev/null  # what was made now is installed too
desktop-file-validate cmake/package/tarnwick.desktop
appstreamcli validate --no-net cmake/package/org.tarnwick.Tarnwick.metainfo.xml >/dev/null ||
  { appstreamcli validate --no-net cmake/package/org.tarnwick.Tarnwick.metainfo.xml; exit 1; }
(cd build/package && cpack -G DEB -B "$top/dist" >cpack.log 2>&1) || { tail -n 20 build/package/cpack.log >&2; exit 1; }
rm -rf dist/_CPack_Packages

build build/portable -DTARNWICK_PORTABLE=ON
version=$(sed -n 's/^TARNWICK_VERSION:[A-Z]*=//p' build/portable/CMakeCache.txt)
name=tarnwick-$version-linux-x86_64
tree=build/portable/$name
rm -rf "$tree"
cmake --install build/portable --prefix "$tree" --strip >build/portable/install.log
./scripts/bundle_libraries.sh "$tree"
tar -C build/portable --sort=name --owner=0 --group=0 --numeric-owner -cJf "dist/$name.tar.xz" "$name"
ls -l --block-size=K dist | awk 'NR > 1 { print $5, $9 }'
