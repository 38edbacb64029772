#!/usr/bin/env bash
# audio_probe.sh PROGRAM: the audio probe against a real PulseAudio and a real PipeWire.
set -eu
program=$1
here=$(dirname "$(readlink -f "$0")")
session=${VORLI_DESKTOP_SESSION:-$here/../../tools/desktop-session.sh}

for server in pulse pipewire; do
  "$session" --wm none --panel none --notify none --audio "$server" --timeout 120 -- \
    python3 "$here/audio_probe.py" "$program" "$server"
done
