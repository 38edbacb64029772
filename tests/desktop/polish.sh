#!/usr/bin/env bash
# polish.sh PROGRAM BUILD HELPER AUTHORITY: whole polishes in real sessions: with the real daemon of that build tree
# and both sound servers, and with scripted daemons that fail in every way.
set -eu
program=$1 build=$2 helper=$3 authority=$4
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

# The session's user may not look into the build tree.
stage=$(mktemp -d /tmp/vorli-polish.XXXXXX)
trap 'rm -rf "$stage"' EXIT
cmake --install "$build" --component helper --prefix "$stage/prefix" >"$stage/install.log" || { cat "$stage/install.log" && exit 1; }
cp "$program" "$stage/program"
cp "$helper" "$stage/helper"
cp "$authority" "$stage/authority"
cp "$here"/{polish,polish_daemons,polish_probe,scripted_bus,sound_server,waiting}.py "$stage/"
chmod 755 "$stage"

failed=0
real=(--system-bus "$stage/prefix" --notify none --compositor xfwm4 --timeout 120)
"$session" "${real[@]}" --audio pulse -- /usr/bin/python3 -B "$stage/polish.py" "$stage/program" pulse || failed=1
"$session" "${real[@]}" --audio pipewire --panel none -- /usr/bin/python3 -B "$stage/polish.py" "$stage/program" pipewire || failed=1
"$session" --panel none --notify none --audio none --timeout 120 -- \
  /usr/bin/python3 -B "$stage/polish_daemons.py" "$stage/program" "$stage/helper" "$stage/authority" || failed=1
exit $failed
