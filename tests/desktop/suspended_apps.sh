#!/usr/bin/env bash
# suspended_apps.sh PROGRAM BUILD: stopped applications go on, by the real daemon of that build tree.
set -eu
program=$1 build=$2
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

# The session's user may not look into the build tree.
stage=$(mktemp -d /tmp/vorli-stopped.XXXXXX)
trap 'rm -rf "$stage"' EXIT
cmake --install "$build" --component helper --prefix "$stage/prefix" >"$stage/install.log" || { cat "$stage/install.log" && exit 1; }
cp "$program" "$stage/program"
cp "$here"/{suspended_apps,waiting,workspace_probe}.py "$stage/"
chmod 755 "$stage"

"$session" --system-bus "$stage/prefix" --panel none --notify none --audio none --timeout 120 -- \
  /usr/bin/python3 -B "$stage/suspended_apps.py" "$stage/program"
