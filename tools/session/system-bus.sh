# shellcheck shell=bash
# shellcheck disable=SC2154  # `here` is the folder of desktop-session.sh
# A private system bus with the installed daemon and the real polkitd. Sourced by desktop-session.sh, as root.
#
# polkitd and the daemon read the files below /run/systemd and the control group of a caller to learn who sits at the
# machine. Here they find one active local session: its files are mounted in their namespaces, and the session's
# processes are in that session's control group. So polkit grants and refuses the daemon's actions by their own
# defaults.

# start_system_bus PREFIX USER: sets DBUS_SYSTEM_BUS_ADDRESS and session_cgroup.
start_system_bus() {
  local prefix=$1 user=$2 folder=$VORLI_SESSION_DIR/system
  mkdir -p "$folder"/{services,policies,actions}
  cp /usr/share/dbus-1/system.d/org.freedesktop.PolicyKit1.conf "$folder/policies/"
  cp /usr/share/polkit-1/actions/*.policy "$folder/actions/"
  if [ "$registered" = yes ]; then
    take_helper_file service "$folder/services" "$prefix/share/dbus-1/system-services"
    take_helper_file conf "$folder/policies" "$prefix/share/dbus-1/system.d" /etc/dbus-1/system.d
    take_helper_file policy "$folder/actions" "$prefix/share/polkit-1/actions" /usr/share/polkit-1/actions
  else
    make_places_to_register "$folder"
  fi

  export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$folder/bus
  write_system_bus_config "$folder" >"$folder/bus.conf"
  make_user_session "$user"
  local with_login=(unshare --mount --propagation private "$here/session/with-login.sh" "$folder")
  in_background system-bus "${with_login[@]}" dbus-daemon --config-file="$folder/bus.conf" --nofork --nopidfile
  wait_until 40 bus_has_name system org.freedesktop.DBus || fail "no private system bus" system-bus
  in_background polkitd "${with_login[@]}" /usr/lib/polkit-1/polkitd --no-debug
  wait_until 40 bus_has_name system org.freedesktop.PolicyKit1 || fail "no polkitd on the private system bus" polkitd
  [ "$registered" = yes ] || start_administrator "$prefix"
}

# make_places_to_register FOLDER: makes a registration write into this session's own files. Also puts this bus where
# programs with root's rights look for it, because they ignore the address in the environment.
make_places_to_register() {
  local folder=$1
  rm -f "$folder"/actions/com.kv.vorli.* # from an installation on this machine
  mount -t tmpfs -o mode=755 tmpfs /usr/local && mkdir -p /usr/local/share/dbus-1/system-services /run/dbus &&
    mount --bind "$folder/services" /usr/local/share/dbus-1/system-services &&
    mount --bind "$folder/policies" /etc/dbus-1/system.d &&
    mount --bind "$folder/actions" /usr/share/polkit-1/actions &&
    mount -t tmpfs -o mode=755 tmpfs /run/dbus && ln -s "$folder/bus" /run/dbus/system_bus_socket ||
    fail "no places to register a daemon"
}

# start_administrator PREFIX
start_administrator() {
  in_background administrator "$here/session/enter-cgroup.sh" "$session_cgroup" \
    /usr/bin/python3 -B "$here/session/administrator.py" "$session_id" "$1"
  wait_until 40 bus_has_name system com.kv.vorli.Administrator || fail "no administrator" administrator
}

# take_helper_file SUFFIX TO FOLDER...: copies the file from the first folder that has it. The system's folders are
# last; they have the files of an installation under /usr/local.
take_helper_file() {
  local name=com.kv.vorli.helper.$1 to=$2 folder
  shift 2
  for folder in "$@"; do
    if [ -f "$folder/$name" ]; then
      cp "$folder/$name" "$to/"
      return
    fi
  done
  fail "no helper is installed under $prefix: $name is missing"
}

write_system_bus_config() {
  cat <<X
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN" "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path=$1/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>$1/services</servicedir>
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
    <allow send_destination="com.kv.vorli.Administrator"/>
    <allow send_destination="org.freedesktop.DBus"/>
    <deny send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"
          send_member="UpdateActivationEnvironment"/>
  </policy>
  <policy user="root">
    <allow own="com.kv.vorli.Administrator"/>
  </policy>
  <includedir>$1/policies</includedir>
</busconfig>
X
}

# Writes the files that a login manager keeps for an active session at the local seat, and makes its control group.
make_user_session() {
  local uid user=$1 login=$VORLI_SESSION_DIR/system/login
  uid=$(id -u "$user")
  session_id=vorli$$
  mkdir -p "$login"/{sessions,users,seats,machines}
  printf '%s\n' "UID=$uid" "USER=$user" ACTIVE=1 IS_DISPLAY=1 STATE=active REMOTE=0 TYPE=x11 CLASS=user SEAT=seat0 \
    >"$login/sessions/$session_id"
  printf '%s\n' "NAME=$user" STATE=active "DISPLAY=$session_id" "SESSIONS=$session_id" \
    "ACTIVE_SESSIONS=$session_id" "ONLINE_SESSIONS=$session_id" SEATS=seat0 ACTIVE_SEATS=seat0 ONLINE_SEATS=seat0 \
    >"$login/users/$uid"
  printf '%s\n' IS_SEAT0=1 "ACTIVE=$session_id" "ACTIVE_UID=$uid" "SESSIONS=$session_id" "UIDS=$uid" \
    >"$login/seats/seat0"

  mkdir "$VORLI_SESSION_DIR/system/cgroup"
  mount -t cgroup2 none "$VORLI_SESSION_DIR/system/cgroup" || fail "no control groups: is the container privileged?"
  session_cgroup=$VORLI_SESSION_DIR/system/cgroup/user.slice/user-$uid.slice/session-$session_id.scope
  mkdir -p "$session_cgroup" || fail "no control group for the session"
}

# A control group outlives its mount, so the session's group is removed first. Another session may use its parents. A
# process that ends loses its environment, by which it is found, before it leaves its group.
remove_user_session() {
  [ -n "${session_cgroup:-}" ] || return 0
  wait_until 5 rmdir "$session_cgroup"
  rmdir -p --ignore-fail-on-non-empty "${session_cgroup%/*}" 2>/dev/null
  umount "$VORLI_SESSION_DIR/system/cgroup" 2>/dev/null
}
