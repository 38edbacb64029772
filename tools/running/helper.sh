# shellcheck shell=bash
# shellcheck disable=SC2154  # prefix comes from ./run
# Registers the helper, and keeps sudo's password valid during a long build. Sourced by ./run.
#
# Under /usr and /usr/local, the installed files alone register the daemon. Under another prefix, no
# bus finds them, so a script of the installation copies them, as root, to where the system looks.

helper_script() { echo "$prefix/libexec/vorli/vorli-helper-install"; }

# Succeeds when the Debian package or root's installation has a daemon: they take precedence.
somebody_else_brings_the_helper() {
  [ -f /usr/share/dbus-1/system-services/com.kv.vorli.helper.service ] || [ -f /usr/local/share/vorli/installed ]
}

installed_for_the_system() { [ "$prefix" = /usr ] || [ "$prefix" = /usr/local ]; }

helper_needs_registration() {
  ! installed_for_the_system && ! somebody_else_brings_the_helper && ! helper_is_current
}

# Succeeds when everything that the script would register is registered.
helper_is_current() { [ -x "$(helper_script)" ] && "$(helper_script)" --is-current 2>/dev/null; }

has_system_bus() { [ -S /run/dbus/system_bus_socket ]; }
has_service_manager() { [ -d /run/systemd/system ]; }

# The bus and the service manager read new files only on request.
reload_system() {
  has_system_bus || return 0
  ! has_service_manager || as_root systemctl daemon-reload
  as_root dbus-send --system --type=method_call --dest=org.freedesktop.DBus / org.freedesktop.DBus.ReloadConfig
}

register_helper() {
  if ! has_system_bus; then
    echo "run: no system bus is running: Vorli will show its dial but cannot polish" >&2
  elif installed_for_the_system; then
    reload_system
    # A running daemon notices a new program, but not a new unit.
    ! has_service_manager || as_root systemctl try-restart vorli-helper.service
  elif helper_needs_registration; then
    echo "run: registering the helper"
    may_become_root "run: sudo may ask for your password to do so" && as_root "$(helper_script)" ||
      echo "run: not registered; Vorli will show its dial but cannot polish" >&2
  fi
}

# Call before the files are removed: the script that unregisters is among them.
unregister_helper() {
  if installed_for_the_system || somebody_else_brings_the_helper || [ ! -x "$(helper_script)" ] ||
    [ ! -e /usr/local/libexec/vorli/vorli-helper ]; then
    return 0
  fi
  may_become_root "run: sudo may ask for your password, to unregister Vorli's helper" &&
    as_root "$(helper_script)" --remove
}

# sudo forgets the password after some minutes, and a build may take longer.
keep_right() {
  [ "$(id -u)" != 0 ] || return 0
  while sleep 60 && kill -0 $$ && sudo -n -v; do :; done >/dev/null 2>&1 </dev/null &
  right_keeper=$!
  trap let_go_of_right EXIT
}

let_go_of_right() {
  [ -z "${right_keeper-}" ] || kill "$right_keeper" 2>/dev/null
  right_keeper=''
}
