#!/usr/bin/env bash
# Checks that a spacemintctl needs no libraries, and that it works in a system that has nothing but the program: it scans,
# lists, and writes numbers as the user's language does. Needs root, or user namespaces.
#
# usage: static.sh PROGRAM
set -euo pipefail

program=$1
fail() { printf 'static: %s\n' "$*" >&2; exit 1; }

! readelf -lW "$program" | grep -q INTERP || fail "the program asks for a loader of libraries"
! readelf -dW "$program" | grep -q NEEDED || fail "the program asks for a library"

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
mkdir -p "$root/home/ann/music"
cp "$program" "$root/spacemintctl"
head -c 1500000 /dev/urandom >"$root/home/ann/music/song"

# The empty system has no shell either, so the variables are set outside of it.
run() {
  local language=$1
  shift
  env -i HOME=/home/ann LC_ALL="$language" TZ=UTC "$(command -v unshare)" --map-root-user --root "$root" \
    /spacemintctl "$@" 2>&1
}
expect() {
  local text=$1 said
  shift
  said=$(run "$@") || fail "\"$*\" failed: $said"
  grep -qF "$text" <<<"$said" || fail "\"$*\" does not say \"$text\": $said"
}

expect '1.5 MB' en_US.UTF-8 scan --min-size 1000
expect 'music/song' en_US.UTF-8 files
expect '1,5' de_DE.UTF-8 files
expect 'Scanned just now' en_US.UTF-8 report
