#!/usr/bin/env bash
# spoken.sh PROGRAM FAT_APPLICATION HELPER AUTHORITY: the popover over the accessibility bus of a real session, with
# daemons that do as they are told.
set -eu
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

export PYTHONPATH=$here/../../tools/session VORLI_PICTURES=unused
"$session" --panel none --notify none --audio pulse --a11y --timeout 150 -- \
  /usr/bin/python3 -B "$here/spoken.py" "$@"
