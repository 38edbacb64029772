# shellcheck shell=bash
# Functions that the scripts of a private session share. Sourced.

fail_call() {
  echo "desktop-session: $1" >&2
  exit 64
}

# fail TEXT [LOG]: ends the session with this message and the last lines of the log.
fail() {
  echo "desktop-session: $1" >&2
  [ -z "${2:-}" ] || tail -n 5 "$VORLI_SESSION_DIR/logs/$2" >&2
  exit 70
}

one_of() {
  local option=$1 value=$2 allowed
  shift 2
  for allowed in "$@"; do [ "$value" != "$allowed" ] || return 0; done
  fail_call "$option takes one of: $*"
}

# in_background LOG COMMAND...: runs the command with its output in that log; $! is its process id.
in_background() {
  local log=$1
  shift
  "$@" >"$VORLI_SESSION_DIR/logs/$log" 2>&1 </dev/null &
}

# wait_until SECONDS COMMAND...: repeats the command until it succeeds; fails after that time.
wait_until() {
  local looks=$(($1 * 20))
  shift
  while ! "$@" >/dev/null 2>&1; do
    looks=$((looks - 1))
    [ $looks -gt 0 ] || return 1
    sleep 0.05
  done
}

# bus_has_name session|system NAME
bus_has_name() {
  dbus-send "--$1" --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.NameHasOwner "string:$2" | grep -q true
}
