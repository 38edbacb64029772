#!/usr/bin/env bash
# Runs one command in a private, headless desktop session.
#
#   desktop-session.sh [options] [--] command [argument...]
#
#   --size WxH             size of the screen                                  (1920x1080)
#   --dpi N                dots per inch of the X server and of Xft.dpi        (96)
#   --wm NAME              xfwm4 | openbox | none                              (xfwm4)
#   --compositor NAME      none | xfwm4 | picom                                (none)
#   --panel NAME           xfce4 (status notifier and XEmbed) | tint2 (XEmbed) | trayer (XEmbed) | none  (xfce4)
#   --panel-pos PLACE      top | bottom                                        (top)
#   --dark                 a dark theme, by XSETTINGS, and a dark panel
#   --portal               the desktop portal, started by the bus on demand; there is none without this option
#   --notify NAME          xfce4 | dunst | none                                (xfce4)
#   --audio NAME           pulse | pipewire | none                             (pulse)
#   --audio-idle           let the sink suspend after a second of silence
#   --a11y                 an accessibility bus that Qt uses
#   --no-activation        the session bus starts no services on demand
#   --system-bus PREFIX    a private system bus with the daemon installed under PREFIX and the real polkitd, for which
#                          the session's user sits at the machine (root only); PREFIX/share is among the session's
#                          data folders
#   --unregistered         with --system-bus: the daemon is not registered yet, and registering it under /usr/local
#                          affects this session only. session/administrator.py shows and answers the password windows
#                          when the command asks it to.
#   --user NAME            run the session as this user (root only; "nobody" with --system-bus)
#   --home DIR             a home folder to use and keep, instead of a fresh one
#   --keep-logs DIR        copy the logs of the session there at its end
#   --timeout SECONDS      end the command after this time                      (never)
#
# The command sees DISPLAY, HOME and the XDG folders, DBUS_SESSION_BUS_ADDRESS, PULSE_SERVER, with --system-bus also
# DBUS_SYSTEM_BUS_ADDRESS, and VORLI_SESSION_DIR with logs/ in it. The exit code is the command's; it is 124 if the
# command's time ran out, 70 if the session did not start, 64 for wrong arguments. The session's user has finished
# Vorli's first steps: a fresh home folder has a $XDG_CONFIG_HOME/Vorli/Vorli.ini that says only this.
#
# Everything started here has VORLI_SESSION_MARK in its environment. At the end, the remaining processes are ended by
# process id; nothing is ever ended by name.
set -u

here=$(dirname "$(readlink -f "$0")")
# shellcheck source=tools/session/common.sh
. "$here/session/common.sh"

parse_options() {
  size=1920x1080 dpi=96 wm=xfwm4 compositor=none panel=xfce4 panel_place=top dark=no notify=xfce4 audio=pulse
  audio_idle=no accessible=no activation=yes portal=no registered=yes system_prefix='' user='' home='' kept_logs='' limit=0
  while [ $# -gt 0 ]; do
    case $1 in
      --dark | --portal | --unregistered | --audio-idle | --a11y | --no-activation | --) ;;
      --*) [ $# -ge 2 ] || fail_call "$1 lacks its value" ;;
    esac
    case $1 in
      --size) size=$2 ;;
      --dpi) dpi=$2 ;;
      --wm) wm=$2 ;;
      --compositor) compositor=$2 ;;
      --panel) panel=$2 ;;
      --panel-pos) panel_place=$2 ;;
      --notify) notify=$2 ;;
      --audio) audio=$2 ;;
      --system-bus) system_prefix=$2 ;;
      --user) user=$2 ;;
      --home) home=$2 ;;
      --keep-logs) kept_logs=$2 ;;
      --timeout) limit=$2 ;;
      --dark) dark=yes && shift && continue ;;
      --portal) portal=yes && shift && continue ;;
      --unregistered) registered=no && shift && continue ;;
      --audio-idle) audio_idle=yes && shift && continue ;;
      --a11y) accessible=yes && shift && continue ;;
      --no-activation) activation=no && shift && continue ;;
      --) shift && break ;;
      -*) fail_call "unknown option $1" ;;
      *) break ;;
    esac
    shift 2
  done
  one_of --wm "$wm" xfwm4 openbox none
  one_of --compositor "$compositor" none xfwm4 picom
  one_of --panel "$panel" xfce4 tint2 trayer none
  one_of --panel-pos "$panel_place" top bottom
  one_of --notify "$notify" xfce4 dunst none
  one_of --audio "$audio" pulse pipewire none
  [ "$compositor" != xfwm4 ] || [ "$wm" = xfwm4 ] || fail_call "--compositor xfwm4 needs --wm xfwm4"
  [ $registered = yes ] || [ -n "$system_prefix" ] || fail_call "--unregistered needs --system-bus"
  command=("$@")
  [ ${#command[@]} -gt 0 ] || fail_call "no command given"
}

need_programs() {
  local needed=(Xvfb xsetroot xdpyinfo xprop xwininfo dbus-daemon dbus-send) program
  [ "$wm" = none ] || needed+=("$wm")
  [ "$compositor" != picom ] || needed+=(picom)
  case $panel in xfce4) needed+=(xfce4-panel) ;; tint2 | trayer) needed+=("$panel") ;; esac
  [ "$notify" != dunst ] || needed+=(dunst)
  [ "$dark" = no ] || needed+=(xsettingsd)
  case $audio in pulse) needed+=(pulseaudio pactl) ;; pipewire) needed+=(pipewire wireplumber pipewire-pulse pactl) ;; esac
  [ "$dpi" = 96 ] || needed+=(xrdb)
  [ -z "$system_prefix" ] || needed+=(unshare setpriv)
  for program in "${needed[@]}"; do
    command -v "$program" >/dev/null || fail "$program is not installed: run tools/setup"
  done
}

marked_processes() {
  grep -lzxF "VORLI_SESSION_MARK=$VORLI_SESSION_MARK" /proc/[0-9]*/environ 2>/dev/null | sed 's|/proc/||; s|/environ||'
}

# Asks each process once to end, and kills those that are left after two seconds.
finish() {
  local status=$? round process left
  local -A asked=()
  trap - EXIT INT TERM HUP
  export -n VORLI_SESSION_MARK # otherwise the search would find itself
  for round in {1..60}; do
    left=$(marked_processes)
    [ -n "$left" ] || break
    for process in $left; do
      [ "$round" -gt 40 ] && kill -KILL "$process" 2>/dev/null
      [ -n "${asked[$process]:-}" ] || kill -TERM "$process" 2>/dev/null
      asked[$process]=yes
    done
    sleep 0.05
  done
  [ -z "$system_prefix" ] || remove_user_session
  if [ -n "$kept_logs" ]; then mkdir -p "$kept_logs" && cp -r "$VORLI_SESSION_DIR/logs/." "$kept_logs/"; fi
  rm -rf --one-file-system "$VORLI_SESSION_DIR"
  exit $status
}

make_session_folder() {
  VORLI_SESSION_DIR=$(mktemp -d /tmp/vorli-session.XXXXXX) || fail "no folder in /tmp"
  VORLI_SESSION_MARK=$(basename "$VORLI_SESSION_DIR")-$$
  export VORLI_SESSION_DIR VORLI_SESSION_MARK
  mkdir "$VORLI_SESSION_DIR"/{logs,run,home}
  chmod 700 "$VORLI_SESSION_DIR/run"
  chmod 711 "$VORLI_SESSION_DIR"
  cp -r "$here/session" "$VORLI_SESSION_DIR/tools" # the user may not be allowed to read this folder
  chmod -R a+rX "$VORLI_SESSION_DIR/tools"
  [ -z "$home" ] || mkdir -p "$home"
  if [ -n "$user" ]; then
    chown -R "$user:" "$VORLI_SESSION_DIR"/{logs,run,home}
    [ -z "$home" ] || chown "$user:" "$home"
    install -d -m 1777 /tmp/.X11-unix
  fi
}

parse_options "$@"
need_programs
[ -n "$user" ] || [ -z "$system_prefix" ] || user=nobody
if [ -n "$user$system_prefix" ]; then
  [ "$(id -u)" = 0 ] || fail "--user and --system-bus need root"
  id "$user" >/dev/null 2>&1 || fail "there is no user $user"
fi

# Runs in its own mount namespace, so that the mounts of the session end with it.
if [ -n "$system_prefix" ] && [ -z "${VORLI_SESSION_UNSHARED:-}" ]; then
  VORLI_SESSION_UNSHARED=yes exec unshare --mount --propagation private "$0" "$@"
fi
unset VORLI_SESSION_UNSHARED

make_session_folder
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

into_session=()
if [ -n "$system_prefix" ]; then
  # shellcheck source=tools/session/system-bus.sh
  . "$here/session/system-bus.sh"
  start_system_bus "$system_prefix" "$user"
  into_session=("$VORLI_SESSION_DIR/tools/enter-cgroup.sh" "$session_cgroup")
fi
[ -z "$user" ] || into_session+=(setpriv --reuid "$user" --regid "$(id -g "$user")" --init-groups)

export size dpi wm compositor panel panel_place dark notify audio audio_idle accessible activation portal home limit
export system_prefix
${into_session[@]+"${into_session[@]}"} "$VORLI_SESSION_DIR/tools/desktop.sh" "${command[@]}" <&0 &
wait $!
