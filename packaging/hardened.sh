#!/usr/bin/env bash
# Checks that programs were built with the hardening options, and with the options that Qt needs. Prints what
# is missing and fails.
#
# usage: hardened.sh PROGRAM…
set -euo pipefail

failed=0
# shellcheck disable=SC2034  # the loop below reads them by name
for program in "$@"; do
  dynamic=$(readelf -dW "$program") segments=$(readelf -lW "$program") symbols=$(readelf -W --dyn-syms "$program")
  # Each rule: what is checked, in which output, with which pattern.
  while IFS='|' read -r what text pattern; do
    grep -qE "$pattern" <<<"${!text}" || { printf '%s: no %s\n' "$program" "$what" >&2; failed=1; }
  done <<'RULES'
position-independent code|dynamic|FLAGS_1.*PIE
read-only relocations|segments|GNU_RELRO
binding at start, which completes read-only relocations|dynamic|FLAGS.*NOW
non-executable stack|segments|GNU_STACK .* RW 
stack protector|symbols| __stack_chk_fail
fortified library calls|symbols| __(mem|str|sn?printf|vsn?printf|fprintf|vfprintf|read|recv|poll|fdelt)[a-z]*_chk
RULES
  if grep -qE 'RPATH|RUNPATH' <<<"$dynamic"; then
    printf '%s: has an RPATH or RUNPATH\n' "$program" >&2
    failed=1
  fi
  if grep -q '_COPY .*@Qt' <<<"$(readelf -rW "$program")"; then
    printf '%s: has copy relocations of Qt data and would crash\n' "$program" >&2
    failed=1
  fi
done
exit "$failed"
