#!/usr/bin/env bash
# insights.sh PROBE FAT_APPLICATION PROGRAM: what is concluded from the real processes of real sessions.
set -eu
probe=$1 fat=$2 program=$3
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}
bare=(--panel none --notify none --audio none --timeout 120)

export PYTHONPATH=$here/../../tools/session PYTHONDONTWRITEBYTECODE=1

# Half a minute of it is waiting: it runs beside the others.
log=$(mktemp)
trap 'rm -f "$log"' EXIT
"$session" "${bare[@]}" -- /usr/bin/python3 "$here/idle_map.py" "$program" >"$log" 2>&1 &
idle_map=$!

failed=0
"$session" "${bare[@]}" -- python3 "$here/insights.py" "$probe" "$fat" || failed=1
"$session" "${bare[@]}" --wm none -- python3 "$here/blind_sweep.py" "$probe" || failed=1
wait $idle_map || failed=1
cat "$log"
exit $failed
