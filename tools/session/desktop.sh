#!/usr/bin/env bash
# shellcheck disable=SC2154  # the options are environment variables
# Starts the desktop as the session's user and runs the command in it. Started by desktop-session.sh,
# which sets the options as environment variables and ends all processes.
set -u

here=$(dirname "$(readlink -f "$0")")
# shellcheck source=tools/session/common.sh
. "$here/common.sh"
dir=$VORLI_SESSION_DIR

# Nothing of the real user's home, runtime folder or buses is read or written.
private_environment() {
  unset WAYLAND_DISPLAY SESSION_MANAGER DBUS_SESSION_BUS_ADDRESS DESKTOP_SESSION XAUTHORITY DISPLAY PULSE_COOKIE
  export HOME=${home:-$dir/home} USER LOGNAME
  USER=$(id -un)
  LOGNAME=$USER
  export XDG_CONFIG_HOME=$HOME/.config XDG_DATA_HOME=$HOME/.local/share
  export XDG_CACHE_HOME=$HOME/.cache XDG_STATE_HOME=$HOME/.local/state
  export XDG_RUNTIME_DIR=$dir/run XDG_CONFIG_DIRS=/etc/xdg XDG_DATA_DIRS=${system_prefix:+$system_prefix/share:}/usr/local/share:/usr/share
  export XDG_SESSION_TYPE=x11 XDG_CURRENT_DESKTOP=X-Vorli
  [ "$panel" != xfce4 ] || XDG_CURRENT_DESKTOP=XFCE
  export LC_ALL=C.UTF-8 LIBGL_ALWAYS_SOFTWARE=1 QT_QPA_PLATFORM=xcb GTK_A11Y=none NO_AT_BRIDGE=1
  channels=$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml
  mkdir -p "$channels" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_STATE_HOME"
  write_vorli_settings
  [ -r . ] && [ -x . ] || cd "$HOME" || fail "the home folder $HOME cannot be entered"
}

# The session's user has finished Vorli's first steps; a test of a new user removes the file.
write_vorli_settings() {
  local file=$XDG_CONFIG_HOME/Vorli/Vorli.ini
  [ ! -e "$file" ] || return 0 # the home folder of an earlier session
  mkdir -p "${file%/*}"
  printf '%s\n' '[General]' hasCompletedOnboarding=true hasSeenDoneScreen=true >"$file"
}

start_x_server() {
  mkfifo "$dir/run/display"
  Xvfb -displayfd 7 -screen 0 "${size}x24" -dpi "$dpi" -nolisten tcp -noreset +extension Composite \
    +extension RANDR 7<>"$dir/run/display" >"$dir/logs/x-server" 2>&1 </dev/null &
  read -r -t 40 number <>"$dir/run/display" || fail "no X server" x-server
  export DISPLAY=:$number
  wait_until 40 xdpyinfo || fail "the X server does not answer" x-server
  xsetroot -solid '#56646b' # contrasts with light and with dark
  [ "$dpi" = 96 ] || echo "Xft.dpi: $dpi" | xrdb -nocpp -merge
}

start_session_bus() {
  local services='<standard_session_servicedirs/>' name
  if [ "$activation" = no ]; then # only the services that the session itself needs
    mkdir "$dir/run/services"
    for name in org.xfce.Xfconf org.a11y.Bus; do
      cp "/usr/share/dbus-1/services/$name.service" "$dir/run/services/" 2>/dev/null
    done
    services="<servicedir>$dir/run/services</servicedir>"
  fi
  choose_portal
  cat >"$dir/run/bus.conf" <<X
<busconfig>
  <type>session</type>
  <listen>unix:path=$dir/run/bus</listen>
  <auth>EXTERNAL</auth>
  $services
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
X
  export DBUS_SESSION_BUS_ADDRESS=unix:path=$dir/run/bus
  in_background session-bus dbus-daemon --config-file="$dir/run/bus.conf" --nofork --nopidfile
  wait_until 40 bus_has_name session org.freedesktop.DBus || fail "no session bus" session-bus
}

# Services in the runtime folder take precedence over the system's. The portal's preferences are for this session only.
choose_portal() {
  if [ "$portal" = yes ]; then
    export GSETTINGS_BACKEND=keyfile
    return
  fi
  mkdir -p "$dir/run/dbus-1/services"
  printf '[D-BUS Service]\nName=org.freedesktop.portal.Desktop\nExec=/bin/false\n' \
    >"$dir/run/dbus-1/services/org.freedesktop.portal.Desktop.service"
}

start_accessibility() {
  [ "$accessible" = yes ] || return 0
  unset NO_AT_BRIDGE GTK_A11Y
  export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_ACCESSIBILITY=1
  in_background accessibility /usr/libexec/at-spi-bus-launcher --launch-immediately
  wait_until 40 bus_has_name session org.a11y.Bus || fail "no accessibility bus" accessibility
}

window_manager_is_up() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }

compositor_is_up() { # a compositor owns the selection _NET_WM_CM_S0
  /usr/bin/python3 "$here/selection_owner.py" _NET_WM_CM_S0
}

start_window_manager() {
  local compositing=off
  [ "$compositor" != xfwm4 ] || compositing=on
  cat >"$channels/xfwm4.xml" <<X
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfwm4" version="1.0">
  <property name="general" type="empty">
    <property name="use_compositing" type="bool" value="$([ $compositing = on ] && echo true || echo false)"/>
    <property name="vblank_mode" type="string" value="off"/>
    <property name="workspace_count" type="int" value="3"/>
  </property>
</channel>
X
  case $wm in
    xfwm4) in_background window-manager xfwm4 --compositor=$compositing --vblank=off ;;
    openbox) in_background window-manager openbox --sm-disable ;;
  esac
  [ "$wm" = none ] || wait_until 40 window_manager_is_up || fail "no window manager" window-manager
  if [ "$compositor" = picom ]; then
    printf '%s\n' 'backend = "xrender";' 'vsync = false;' 'shadow = false;' 'fading = false;' >"$dir/run/picom.conf"
    in_background compositor picom --config "$dir/run/picom.conf"
  fi
  [ "$compositor" = none ] || wait_until 40 compositor_is_up || fail "no compositor" compositor
}

settings_are_up() { /usr/bin/python3 "$here/selection_owner.py" _XSETTINGS_S0; }

# Sets the theme as the settings daemons of desktops do.
start_settings() {
  [ "$dark" = yes ] || return 0
  local theme=$XDG_DATA_HOME/themes/Adwaita-dark/gtk-3.0
  mkdir -p "$theme" # some distributions have a package for this file alone
  echo '@import url("resource:///org/gtk/libgtk/theme/Adwaita/gtk-contained-dark.css");' >"$theme/gtk.css"
  echo 'Net/ThemeName "Adwaita-dark"' >"$dir/run/xsettingsd"
  in_background settings xsettingsd --config "$dir/run/xsettingsd"
  wait_until 40 settings_are_up || fail "no settings of the desktop" settings
}

# Started here and not by the bus: several installed daemons have the same bus name, and the bus would take any one.
start_notifications() {
  case $notify in
    xfce4) in_background notifications "$(echo /usr/lib/*/xfce4/notifyd/xfce4-notifyd)" ;;
    dunst) in_background notifications dunst ;;
    none) return 0 ;;
  esac
  wait_until 40 bus_has_name session org.freedesktop.Notifications || fail "no notification daemon" notifications
}

write_xfce_panel() {
  cat >"$channels/xfce4-panel.xml" <<X
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="$([ "$dark" = yes ] && echo true || echo false)"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=$([ "$panel_place" = top ] && echo 6 || echo 8);x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="28"/>
      <property name="icon-size" type="uint" value="0"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/><value type="int" value="2"/><value type="int" value="3"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="tasklist"/>
    <property name="plugin-2" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-3" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
      <property name="known-legacy-items" type="array"><value type="string" value="none"/></property>
    </property>
  </property>
</channel>
X
}

write_tint2_panel() {
  cat >"$dir/run/tint2rc" <<X
rounded = 0
border_width = 0
background_color = $([ "$dark" = yes ] && echo '#202020 100' || echo '#e8e8e8 100')

panel_items = TS
panel_background_id = 1
panel_size = 100% 28
panel_position = $panel_place center horizontal
panel_layer = top
systray_padding = 2 2 2
systray_icon_size = 22
X
}

tray_is_up() { /usr/bin/python3 "$here/selection_owner.py" _NET_SYSTEM_TRAY_S0; }

start_panel() {
  case $panel in
    xfce4)
      write_xfce_panel
      in_background panel xfce4-panel --disable-wm-check
      wait_until 40 bus_has_name session org.kde.StatusNotifierWatcher || fail "no status notifier watcher" panel
      ;;
    tint2)
      write_tint2_panel
      in_background panel tint2 -c "$dir/run/tint2rc"
      ;;
    trayer)
      in_background panel trayer --edge "$panel_place" --align right --widthtype request --height 28 --expand true \
        --transparent false --tint "$([ "$dark" = yes ] && echo 0x202020 || echo 0xe8e8e8)"
      ;;
    none) return 0 ;;
  esac
  wait_until 40 tray_is_up || fail "no tray in the panel" panel
}

# A null sink, whose monitor can be recorded.
start_sound() {
  local suspend=()
  case $audio in
    pulse)
      export PULSE_SERVER=unix:$dir/run/pulse.socket PULSE_COOKIE=$dir/run/cookie PULSE_RUNTIME_PATH=$dir/run/pulse
      [ "$audio_idle" = no ] || suspend=(-L "module-suspend-on-idle timeout=1")
      # norewinds: otherwise the sink renders two seconds ahead, and its monitor is silent for that time.
      in_background sound pulseaudio -n --daemonize=no --exit-idle-time=-1 --disallow-exit=no --use-pid-file=no \
        --realtime=no --high-priority=no \
        -L "module-native-protocol-unix socket=$dir/run/pulse.socket auth-anonymous=1" \
        -L "module-null-sink sink_name=vorli_null norewinds=1 sink_properties=device.description=Null" \
        ${suspend[@]+"${suspend[@]}"}
      ;;
    pipewire)
      export PULSE_SERVER=unix:$dir/run/pulse/native
      in_background pipewire pipewire
      wait_until 40 test -S "$dir/run/pipewire-0" || fail "no pipewire" pipewire
      in_background wireplumber wireplumber
      in_background sound pipewire-pulse
      ;;
    none) return 0 ;;
  esac
  wait_until 40 pactl info || fail "no sound server" sound
  [ "$audio" = pulse ] || pactl load-module module-null-sink media.class=Audio/Sink sink_name=vorli_null >/dev/null
  wait_until 10 pactl set-default-sink vorli_null || fail "no default sink" sound # wireplumber may still be starting
}

private_environment
start_x_server
start_session_bus
start_accessibility
start_window_manager
start_settings
start_notifications
start_panel
start_sound

if [ "$limit" = 0 ]; then exec "$@"; fi
exec timeout --kill-after=5 "$limit" "$@"
