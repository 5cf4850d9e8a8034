#!/bin/sh
# Spreads an archive with GNU parallel: SHARDS runs of the program, each over its share.
#   parallel.sh SHARDS LIST RESULTS [OPTION...]
# LIST: a file with a path a line, and RESULTS: a folder, both where every machine finds them. Running it again goes on
# where it was. From the environment:
#   MACHINES   what parallel takes for --sshlogin, such as "node1,node2"; without it, this machine
#   AT_A_TIME  runs at a time on each machine; without it, one, which keeps the machine's processors busy itself
set -eu
shards=$1
list=$(realpath "$2")
results=$(realpath -m "$3")
shift 3
# -q because names may hold blanks. The exit status is the number of runs in which not every file was fine.
seq "$shards" | parallel -q --will-cite --sshlogin "${MACHINES:-:}" --jobs "${AT_A_TIME:-1}" --line-buffer --tag \
  "${LIGHTMOTION:-lightmotion}" run "@$list" --out "$results" --shard "{}/$shards" "$@"
