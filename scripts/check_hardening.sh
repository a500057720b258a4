#!/usr/bin/env bash
# check_hardening.sh PROGRAM...: fails, with the reason, if a program could be laid at a known address, has tables of
# the loader that stay writable, or does not watch its stack.
set -euo pipefail

[ $# -gt 0 ] || { echo "Which programs?" >&2; exit 2; }
failed=0
lacks() {
  echo "$1 $2" >&2
  failed=1
}
for program in "$@"; do
  [ -s "$program" ] || { lacks "$program" "is not there"; continue; }
  headers=$(readelf --wide --file-header --program-headers --dynamic "$program")
  symbols=$(readelf --wide --dyn-syms "$program")
  grep -q 'Type: *DYN' <<<"$headers" || lacks "$program" "is not position-independent"
  grep -q 'GNU_RELRO' <<<"$headers" || lacks "$program" "has no part that becomes read-only"
  grep -q 'BIND_NOW' <<<"$headers" || lacks "$program" "is linked while it runs"
  grep -qE 'GNU_STACK .* RW ' <<<"$headers" || lacks "$program" "can run code on its stack"
  grep -q '__stack_chk_fail' <<<"$symbols" || lacks "$program" "has no stack protector"
done
exit $failed
