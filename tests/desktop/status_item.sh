#!/usr/bin/env bash
# status_item.sh PROGRAM: the status item in real panels of both kinds, and where there is none; and the
# program's own small windows.
set -eu
program=$1
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

in_session() { # "OPTION..." TEST [ARGUMENT...]
  local options test=$2
  read -ra options <<<"$1"
  shift 2
  "$session" --audio none --notify none --no-activation --timeout 200 "${options[@]}" -- \
    /usr/bin/python3 "$here/$test" "$program" "$@"
}

in_session "--panel xfce4" status_item.py
in_session "--panel tint2" status_item_xembed.py tint2
in_session "--panel trayer" status_item_xembed.py trayer
in_session "--panel none" status_item_alone.py
in_session "--panel none --compositor picom" application_host.py
