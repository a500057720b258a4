#!/usr/bin/env bash
# bundle_libraries.sh TREE: puts Qt, its plugins and whatever else the programs in TREE need into TREE/lib and
# TREE/plugins, but for what every system must have of its own: its C library, its graphics drivers and its fonts.
set -euo pipefail

tree=${1:?which tree?}
plugins=$(dirname "$(find /usr/lib -path '*/qt6/plugins/platforms/libqxcb.so' | head -n 1)")/..
mkdir -p "$tree/lib" "$tree/plugins"
for plugin in platforms/libqxcb platforms/libqoffscreen platforms/libqminimal iconengines/libqsvgicon \
  imageformats/libqsvg xcbglintegrations/libqxcb-glx-integration xcbglintegrations/libqxcb-egl-integration \
  platforminputcontexts/libcomposeplatforminputcontextplugin \
  platforminputcontexts/libibusplatforminputcontextplugin platformthemes/libqxdgdesktopportal; do
  [ -e "$plugins/$plugin.so" ] || continue
  mkdir -p "$tree/plugins/$(dirname "$plugin")"
  cp "$plugins/$plugin.so" "$tree/plugins/$plugin.so"
done

# The system's own: the loader and the C library, drivers and what talks to them, the font configuration.
own='^(ld-linux.*|libc|libm|libdl|libpthread|librt|libresolv|libGL.*|libEGL.*|libOpenGL|libgbm|libdrm.*|libX11.*|libxcb|libfontconfig|libfreetype|libz|libstdc\+\+|libgcc_s)\.so'
find "$tree" -path "$tree/lib" -prune -o -type f \( -perm -u+x -o -name '*.so' \) -print0 |
  xargs -0 -n 1 ldd | awk '$2 == "=>" && $3 ~ /^\// { print $3 }' | sort -u |
  while read -r library; do
    base=$(basename "$library")
    [[ $base =~ $own || -e $tree/lib/$base ]] || cp -L "$library" "$tree/lib/$base"
  done
# Whose they are and on which terms.
mkdir -p "$tree/licences"
for library in "$tree"/lib/*; do
  package=$(dpkg -S "*/$(basename "$library")" 2>/dev/null | head -n 1 | cut -d: -f1)
  [ -z "$package" ] || [ ! -e "/usr/share/doc/$package/copyright" ] || cp -L "/usr/share/doc/$package/copyright" "$tree/licences/$package"
done
