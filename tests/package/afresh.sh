#!/bin/sh
# usage: afresh.sh FOLDER COMMAND...
# Runs a command that fills FOLDER, without what an earlier run left in it.
set -eu
rm -rf "$1"
shift
exec "$@"
