#!/usr/bin/env bash
# screenshots.sh PROGRAM FOLDER [NAME]: runs the screenshot program light and dark, at 100 % and 200 %, on a virtual
# screen; with NAME only the windows whose name holds it.
set -euo pipefail

program=$1
folder=$2
mkdir -p "$folder"
for scale in 1 2; do
  for palette in light dark; do
    QT_QPA_PLATFORM=xcb QT_SCALE_FACTOR=$scale \
      xvfb-run -a -s "-screen 0 2800x2600x24" "$program" "$folder" "$palette" "$((scale * 100))" "${3:-}"
  done
done
