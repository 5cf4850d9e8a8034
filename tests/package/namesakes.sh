#!/bin/sh
# usage: namesakes.sh NM LIBRARY
# Writes an assembler source that defines every function which LIBRARY exports, all as one jump.
set -eu
"$1" -D --defined-only "$2" | awk '
  $2 == "T" { print "\t.globl\t" $3 "\n\t.type\t" $3 ", @function\n" $3 ":"; ++count }
  BEGIN { print "\t.text" }
  END {
    print "\tjmp\tnamesake_called@PLT\n\t.section\t.note.GNU-stack,\"\",@progbits"
    exit count == 0
  }'
