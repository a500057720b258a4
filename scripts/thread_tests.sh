#!/usr/bin/env bash
# thread_tests.sh: builds the tests of the rooms that have threads under the thread sanitizer, and runs them. Of the
# compiler those that compile whole models: its other tests have one thread and would take minutes here.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
rooms=()
targets=()
for room in core process decompiler tools images jobs platform; do
  [ -f "tests/$room/CMakeLists.txt" ] || continue
  rooms+=("$room")
  targets+=("${room}_tests")
done
./scripts/ensure_packages.sh build test
./scripts/build.sh tsan "${targets[@]}" compiler_tests
export QT_QPA_PLATFORM=offscreen
ctest --preset tsan --no-tests=error --label-regex "^($(IFS='|'; echo "${rooms[*]}"))$"
ctest --preset tsan --no-tests=error --tests-regex '^compiler\.CompileModel\.'
