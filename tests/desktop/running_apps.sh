#!/usr/bin/env bash
# running_apps.sh PROGRAM: what the workspace makes of real applications under a real window manager.
set -eu
program=$1
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

"$session" --panel xfce4 --notify none --audio none --timeout 150 -- python3 "$here/running_apps.py" "$program"
