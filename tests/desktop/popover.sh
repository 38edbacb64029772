#!/usr/bin/env bash
# popover.sh PROGRAM BUILD [TEST...]: the popover on real desktops, by real clicks on the real icon, with the daemon of
# that build tree. With tests named, those alone and on one desktop; VORLI_OPENINGS=200 makes the openings' test long.
set -eu
program=$1 build=$2
shift 2
here=$(dirname "$(readlink -f "$0")")
tools=$here/../../tools
session=${VORLI_DESKTOP_SESSION:-$tools/desktop-session.sh}
pictures=${VORLI_PICTURES:-$here/../../build/pictures}/popover-on-screen

# The session's user may not look into the build tree.
stage=$(mktemp -d /tmp/vorli-popover.XXXXXX)
trap 'rm -rf "$stage"' EXIT
cmake --install "$build" --component helper --prefix "$stage/prefix" >"$stage/install.log" || { cat "$stage/install.log" && exit 1; }
install -D "$program" "$stage/prefix/bin/vorli"
if [ -d "$build/../fonts" ]; then
  mkdir -p "$stage/prefix/share/vorli/fonts" && cp "$build"/../fonts/*.ttf "$stage/prefix/share/vorli/fonts/"
fi
cp "$here"/{popover*,waiting,tray_parts}.py "$tools/session/vorli.py" "$stage/"
install -d -m 1777 "$stage/pictures"
chmod 755 "$stage"

in_session() { # NAME "OPTION..." FILE TEST...
  local name=$1 options file=$3
  read -ra options <<<"$2"
  shift 3
  VORLI_PICTURES=$stage/pictures VORLI_SESSION_NAME=$name "$session" --system-bus "$stage/prefix" --audio none \
    --notify none --timeout $((120 + 3 * ${VORLI_OPENINGS:-20})) "${options[@]}" -- \
    /usr/bin/python3 -B "$stage/$file.py" "$stage/prefix/bin/vorli" "$@"
}

status=0
if [ $# -gt 0 ]; then
  in_session top "--compositor picom" popover "$@"
  exit
fi
in_session top "--compositor picom" popover || status=1
in_session bottom "--compositor none --panel-pos bottom --dark" popover PlaceTest || status=1
in_session dense "--compositor picom --dpi 192 --size 2560x1600" popover PlaceTest || status=1
in_session openbox "--wm openbox --panel tint2 --dpi 144 --no-activation" popover PlaceTest || status=1
in_session two "--compositor picom --portal" popover_screens || status=1
in_session two-dense "--compositor picom --portal --dpi 192 --size 2560x1600" popover_screens || status=1
in_session two-middle "--compositor none --dpi 144" popover_screens MonitorsTest RightMonitorTest || status=1
mkdir -p "$pictures" && cp "$stage"/pictures/*.png "$pictures/" || status=1
exit $status
