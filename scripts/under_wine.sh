# What the scripts that build and try Windows programs have in common; to be sourced in the project's folder.

wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
failed=()

# The test programs of the rooms that can be built without Qt.
logic_tests=(core_tests model_tests decompiler_tests smd_tests qc_tests compiler_tests archives_tests project_tests
  process_tests tools_tests images_tests textures_tests sdk_tests jobs_tests cli_tests)

# Those that draw with OpenGL, which Wine has only where there is a screen.
drawing_tests=(view_tests jobs_tests pages_tests cli_tests)

# Builds the targets that follow, or everything, with windows and images in build/windows, from the libraries in `$1`.
# Quiet unless something fails.
build_for_windows() {
  local libraries=$1 build=$PWD/build/windows started=$SECONDS targets=()
  shift
  [ $# -eq 0 ] || targets=(--target "$@")
  mkdir -p "$build"
  if ! cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNWICK_GUI=ON -DTARNWICK_IMAGES=ON \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/windows_cross.cmake" -DTARNWICK_WINDOWS_LIBRARIES="$libraries" \
    -DCMAKE_PREFIX_PATH="$libraries" -DQT_HOST_PATH=/usr \
    -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(gcc -print-multiarch)/cmake" >"$build/build.log" 2>&1 ||
    ! cmake --build "$build" "${targets[@]}" >"$build/build.log" 2>&1; then
    grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking|Automatic)' "$build/build.log" >&2 || true
    echo "The Windows build failed." >&2
    return 1
  fi
  echo "Built for Windows in $((SECONDS - started)) s."
}

# Gives Wine a Windows folder of its own at `$1`, and no words. Fails where it does not start.
start_wine() {
  mkdir -p "$1"
  export WINEPREFIX=$1 WINEDEBUG=-all
  unset DISPLAY
  timeout 300 "$wine" cmd /c exit >/dev/null 2>&1 || return
  # Wine has no fonts of its own, and Windows' are not to be had.
  local font
  for font in Tahoma 'Segoe UI' 'MS Shell Dlg' 'MS Shell Dlg 2'; do set_wine_font "$font" 'DejaVu Sans'; done
  set_wine_font 'Courier New' 'DejaVu Sans Mono'
}

# Gives the programs font `$2` for `$1`.
set_wine_font() {
  "$wine" reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$1" /d "$2" /f >/dev/null 2>&1
}

# Lets programs with windows run without a screen. Wine keeps what is named QT_... from them, and hands them without its
# first letters what is named WINEQT_... Without a screen Qt knows none of the system's fonts, and would draw boxes that
# are wider than letters: it has to be told where there are some.
windows_without_screen() {
  export QT_QPA_PLATFORM=offscreen WINEQT_QPA_PLATFORM=offscreen
  export WINEQT_QPA_FONTDIR='Z:\usr\share\fonts\truetype\dejavu'
}

# Runs test program `$1` with its log in `$2`. What fails is run once more by itself: on a busy machine Wine can take longer
# to start a program, or to end one, than a test waits for.
run_windows_test() {
  local program=$1 log=$2 again run=(timeout 1200 "$wine" "$1")
  if [[ " ${drawing_tests[*]} " == *" $(basename "$program" .exe) "* ]] && command -v xvfb-run >/dev/null; then
    run=(xvfb-run -a "${run[@]}")
  fi
  "${run[@]}" >"$log" 2>&1 && return
  again=$(tr -d '\r' <"$log" | sed -n 's/^\[  FAILED  \] \([^ ,]*\.[^ ,]*\).*/\1/p' | sort -u | paste -sd:)
  mv "$log" "$log.first"
  "${run[@]}" ${again:+"--gtest_filter=$again"} >"$log" 2>&1 || return
  echo "$(basename "$program" .exe): passed when run once more: ${again:-all}"
}

# Runs the named test programs in folder `$1`, one after another since some wait for programs that they start, with a log of
# each in folder `$2`; adds those that fail to `failed`.
run_windows_tests() {
  local folder=$1 logs=$2 name
  shift 2
  for name in "$@"; do
    if run_windows_test "$folder/$name.exe" "$logs/$name.log"; then
      echo "$name: $(grep -a 'PASSED' "$logs/$name.log" | tr -d '\r')"
    else
      grep -a -E 'Failure|error:|FAILED|Expected|Actual|Which is' "$logs/$name.log" | tr -d '\r' | head -n 60 >&2 || true
      failed+=("$name")
    fi
  done
}

# Decompiles the sample with the Windows program `$1` and the native one `$2` and compares what they write, in folder `$3`.
compare_sample() {
  local sample=$PWD/samples/walker.mdl windows native
  windows=$(realpath "$1") native=$(realpath "$2")
  # Each in a folder of its own under the same relative path, since the script names where it lies.
  rm -rf "$3/native" "$3/windows"
  mkdir -p "$3/native" "$3/windows"
  (cd "$3/native" && "$native" decompile --quiet --output out "$sample")
  if ! (cd "$3/windows" && "$wine" "$windows" decompile --quiet --output out "$sample"); then
    failed+=("the sample does not decompile")
  fi
  # The same files but for the platform's line ends.
  find "$3/windows" -type f -exec sed -i 's/\r$//' {} +
  if diff -r "$3/native" "$3/windows"; then
    echo "The sample decompiles alike: $(find "$3/windows" -type f | wc -l) files."
  else
    failed+=("the sample's sources differ")
  fi
}

# Fails, with their names, if something is in `failed`.
tell_failed() {
  [ ${#failed[@]} -eq 0 ] && return
  printf 'Failed under Wine: %s\n' "${failed[@]}" >&2
  return 1
}
