#!/bin/sh
# usage: run.sh PROGRAM
# Runs the page's tests. Exits with status 77 if they cannot run.
set -eu
source=$(cd "$(dirname "$0")" && pwd)

for command in node chromium ffmpeg; do
  if ! command -v "$command" >/dev/null; then
    echo "skipped: the tests of the page need the command $command (tools/setup test installs it)"
    exit 77
  fi
done
export LIGHTMOTION_PROGRAM="$1"
exec node --test "$source"/*_test.js
