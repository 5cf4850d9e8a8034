#!/bin/sh
# Distributes an archive with GNU parallel: SHARDS runs of the program, one per shard.
#   parallel.sh SHARDS LIST RESULTS [OPTION...]
# LIST: a file with one path per line; RESULTS: a folder. Every machine must see both. Running it again resumes an
# interrupted run. Environment:
#   MACHINES   value of parallel's --sshlogin, such as "node1,node2"; default: this machine
#   AT_A_TIME  concurrent runs per machine; default 1, because one run uses all processors
set -eu
shards=$1
list=$(realpath "$2")
results=$(realpath -m "$3")
shift 3
# -q: names may contain blanks. The exit status is the number of runs in which not all files are ok.
seq "$shards" | parallel -q --will-cite --sshlogin "${MACHINES:-:}" --jobs "${AT_A_TIME:-1}" --line-buffer --tag \
  "${LIGHTMOTION:-lightmotion}" run "@$list" --out "$results" --shard "{}/$shards" "$@"
