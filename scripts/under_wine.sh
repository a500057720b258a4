# What the scripts that try Windows programs have in common; to be sourced in the project's folder.

wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
failed=()

# Gives Wine a Windows folder of its own at `$1`, and no words. Fails where it does not start.
start_wine() {
  mkdir -p "$1"
  export WINEPREFIX=$1 WINEDEBUG=-all
  unset DISPLAY
  timeout 120 "$wine" cmd /c exit >/dev/null 2>&1
}

# Runs every test program in folder `$1`, with a log of each in folder `$2`; adds those that fail to `failed`.
run_windows_tests() {
  local tests name log
  for tests in "$1"/*_tests.exe; do
    name=$(basename "$tests" .exe)
    log=$2/$name.log
    if timeout 600 "$wine" "$tests" >"$log" 2>&1; then
      echo "$name: $(grep -a 'PASSED' "$log" | tr -d '\r')"
    else
      grep -a -E 'Failure|error:|FAILED|Expected|Actual|Which is' "$log" | tr -d '\r' | head -n 60 >&2 || true
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
