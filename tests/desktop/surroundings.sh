#!/usr/bin/env bash
# surroundings.sh PROGRAM: the whole program where something that it expects is missing or broken.
set -eu
program=$1
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

"$session" --panel none --notify none --audio none --timeout 150 -- python3 "$here/surroundings.py" "$program"
