#!/bin/sh
# usage: afresh.sh FOLDER COMMAND...
# Empties FOLDER, then runs a command that fills it.
set -eu
rm -rf "$1"
shift
exec "$@"
