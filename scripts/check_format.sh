#!/usr/bin/env bash
# Fails, with the places, if a C++ file is not as clang-format leaves it.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
if ! git ls-files -z -- '*.cpp' '*.h' | xargs -0 -r clang-format --dry-run -Werror; then
  echo "Run: git ls-files -z -- '*.cpp' '*.h' | xargs -0 clang-format -i" >&2
  exit 1
fi
