#!/usr/bin/env bash
# glow.sh PROGRAM: the light at the edges of the screen, under both compositors and under none.
set -eu
program=$1
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

in_session() { # TEST OPTION...
  local test=$1
  shift
  "$session" --audio none --notify none --panel none --no-activation --timeout 120 "$@" -- \
    /usr/bin/python3 "$here/$test" "$program"
}

in_session glow.py --compositor picom
in_session glow.py --compositor xfwm4
in_session glow_compositor.py --compositor none
