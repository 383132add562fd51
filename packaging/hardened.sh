#!/usr/bin/env bash
# Whether programs were built as hard to misuse as they are meant to be, and as Qt needs them to be. What is
# missing is named, and fails.
#
# usage: hardened.sh PROGRAM…
set -euo pipefail

failed=0
# shellcheck disable=SC2034  # each is read by its name, below
for program in "$@"; do
  dynamic=$(readelf -dW "$program") segments=$(readelf -lW "$program") symbols=$(readelf -W --dyn-syms "$program")
  # Each says what must be found, where.
  while IFS='|' read -r what text pattern; do
    grep -qE "$pattern" <<<"${!text}" || { printf '%s: no %s\n' "$program" "$what" >&2; failed=1; }
  done <<'RULES'
position-independent code|dynamic|FLAGS_1.*PIE
read-only relocations|segments|GNU_RELRO
binding at the start, which makes them complete|dynamic|FLAGS.*NOW
stack that is no code|segments|GNU_STACK .* RW 
stack protector|symbols| __stack_chk_fail
fortified library calls|symbols| __(mem|str|sn?printf|vsn?printf|fprintf|vfprintf|read|recv|poll|fdelt)[a-z]*_chk
RULES
  if grep -qE 'RPATH|RUNPATH' <<<"$dynamic"; then
    printf '%s: looks for libraries in a folder of its own\n' "$program" >&2
    failed=1
  fi
  if grep -q '_COPY .*@Qt' <<<"$(readelf -rW "$program")"; then
    printf '%s: has copies of data of Qt, and would crash\n' "$program" >&2
    failed=1
  fi
done
exit "$failed"
