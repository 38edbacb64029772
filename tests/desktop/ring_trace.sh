#!/usr/bin/env bash
# ring_trace.sh PROGRAM: the running program's ring, worked out again from the raw readings of the same ticks.
set -eu
program=$1
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

"$session" --notify none --audio none --timeout 360 -- python3 "$here/ring_trace.py" "$program"
