#!/bin/sh
# usage: c_interface.sh SOURCES LIBRARY DUMP
# Compares the C interface of LIBRARY, built with debug information, with that of the releases, c_interface.abi. Writes
# DUMP, from which c_interface.abi is made.
set -eu
library=$2 dump=$3 released=../tests/package/c_interface.abi
cd "$1/lightmotion"
command -v abidw >/dev/null || { echo "skipped: abigail-tools are not installed"; exit 77; }

# Records that the header does not define are opaque; it is found by this name in every folder. Of sources only the
# names are kept, because the rest depends on the machine; only newer versions of abidw write hashes.
abidw --header-file lightmotion.h --drop-private-types --exported-interfaces-only --drop-undefined-syms \
  --no-corpus-path --no-comp-dir-path --no-elf-needed --no-show-locs --no-parameter-names --type-id-style hash \
  --out-file "$dump.whole" "$library"
sed "s|path='.*/|path='|; s| hash='[^']*'||" "$dump.whole" >"$dump"

# What was released of it: lightmotion_info, which states its size, may grow at its end, and enumerations may grow.
size_in() { sed -n "s/.*class-decl name='lightmotion_info'.* size-in-bits='\([0-9]*\)'.*/\1/p" "$1"; }
[ -n "$(size_in "$dump")" ] || { echo "failed: lightmotion_info is not in the dump" >&2; exit 1; }
awk -v size="$(size_in $released)" '
  function number(attribute) { match($0, attribute "=.[0-9]+"); return substr($0, RSTART + length(attribute) + 2) + 0 }
  NR == FNR { enumerators[$0]; next }
  /<enumerator / && !($0 in enumerators) { next }
  /<class-decl name=.lightmotion_info.* size-in-bits/ {
    inside = 1
    sub("size-in-bits=." number("size-in-bits"), "size-in-bits=\047" size)
  }
  inside && /<data-member/ && number("layout-offset-in-bits") >= size { skipping = 1 }
  !skipping
  /<\/data-member>/ { skipping = 0 }
  /<\/class-decl>/ { inside = 0 }' $released "$dump" >"$dump.released"

refresh() { echo "$1: cp $dump tests/package/c_interface.abi" >&2; }
if ! changes=$(abidiff --harmless --no-added-syms $released "$dump.released"); then
  echo "$changes" >&2
  echo "Hosts that were built with a release no longer work: this takes a new major version (docs/compatibility.md)." >&2
  refresh "For a new major version, or if only reserved bytes got a use"
  exit 1
fi
if ! additions=$(abidiff --harmless $released "$dump") || [ -n "$additions" ]; then
  printf 'Additions to the C interface:\n%s\n' "$additions" >&2
  refresh "To keep them from now on"
fi
