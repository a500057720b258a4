#!/usr/bin/env bash
# coverage.sh: runs all tests in a build that counts, and prints for each room how much of its code they reach.
# The lines of each file, and which were never run: build/coverage/report/index.html.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
./scripts/ensure_packages.sh build test coverage
./scripts/build.sh coverage
find build/coverage -name '*.gcda' -delete  # counts of earlier runs
export QT_QPA_PLATFORM=offscreen
tests=0
ctest --preset coverage --no-tests=error >build/coverage/tests.log 2>&1 || tests=$?

report=build/coverage/report
mkdir -p "$report"
# Programs that a test kills, as the jailed worker, leave no counts: what only they run is shown as never run.
gcovr --root . --object-directory build/coverage --exclude '(tests|bench|fuzz|samples)/' --exclude '.*_autogen/' \
  --gcov-ignore-parse-errors --exclude-throw-branches --exclude-unreachable-branches \
  --csv "$report/files.csv" --html-details "$report/index.html" build/coverage >"$report/gcovr.log" 2>&1 ||
  { tail -n 20 "$report/gcovr.log" >&2; exit 1; }

awk -F, '
  function row(order, name, lines, hit, branches, taken) {
    printf "%d%-12s %6d of %6d lines  %5.1f %%   %6d of %6d branches  %5.1f %%\n", order, name, hit, lines,
      lines ? 100 * hit / lines : 100, taken, branches, branches ? 100 * taken / branches : 100
  }
  NR == 1 { for (i = 1; i <= NF; ++i) column[$i] = i; next }
  {
    room = $1; sub("/.*", "", room)
    lines[room] += $column["line_total"]; hit[room] += $column["line_covered"]
    branches[room] += $column["branch_total"]; taken[room] += $column["branch_covered"]
    allLines += $column["line_total"]; allHit += $column["line_covered"]
    allBranches += $column["branch_total"]; allTaken += $column["branch_covered"]
  }
  END {
    for (room in lines) row(1, room, lines[room], hit[room], branches[room], taken[room])
    row(2, "all", allLines, allHit, allBranches, allTaken)
  }' "$report/files.csv" | sort | cut -c 2-
[ "$tests" -eq 0 ] || { tail -n 20 build/coverage/tests.log >&2; echo "Tests failed: build/coverage/tests.log" >&2; exit 1; }
