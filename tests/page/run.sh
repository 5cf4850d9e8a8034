#!/bin/sh
# Runs the tests of the page: run.sh PROGRAM FOLDER. What they need of the npm registry goes into FOLDER, once.
# Ends with status 77 where they cannot run.
set -eu
program=$1
folder=$2
source=$(cd "$(dirname "$0")" && pwd)

for command in node npm chromium ffmpeg; do
  if ! command -v "$command" >/dev/null; then
    echo "skipped: the tests of the page need the command $command (tools/setup test installs it)"
    exit 77
  fi
done

mkdir -p "$folder"
if ! cmp -s "$source/package-lock.json" "$folder/installed.json"; then
  cp "$source/package.json" "$source/package-lock.json" "$folder"
  if ! (cd "$folder" && npm ci --no-audit --no-fund --loglevel=error); then
    echo "skipped: the npm registry cannot be reached for playwright-core, which the tests of the page need"
    exit 77
  fi
  cp "$folder/package-lock.json" "$folder/installed.json"
fi

export LIGHTMOTION_PROGRAM="$program" LIGHTMOTION_MODULES="$folder/"
exec node --test "$source"/*_test.js
