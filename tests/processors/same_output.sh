#!/bin/sh
# usage: same_output.sh EMULATOR... -- PROGRAM ARGUMENT...
# Runs the program natively and under the emulator: both must succeed and write the same bytes.
set -eu

emulator=
while [ "$1" != -- ]; do
  emulator="$emulator $1"
  shift
done
shift

outputs=$(mktemp -d)
trap 'rm -rf "$outputs"' EXIT
"$@" >"$outputs/native"
# shellcheck disable=SC2086 -- split into words
$emulator "$@" >"$outputs/emulated"
cmp "$outputs/native" "$outputs/emulated"
