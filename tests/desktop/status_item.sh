#!/usr/bin/env bash
# status_item.sh PROGRAM: the status item in real panels of both kinds, and where there is none.
set -eu
program=$1
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

in_session() { # PANEL TEST [ARGUMENT...]
  local panel=$1 test=$2
  shift 2
  "$session" --audio none --notify none --no-activation --timeout 200 --panel "$panel" -- \
    /usr/bin/python3 "$here/$test" "$program" "$@"
}

in_session xfce4 status_item.py
in_session tint2 status_item_xembed.py tint2
in_session trayer status_item_xembed.py trayer
in_session none status_item_alone.py
