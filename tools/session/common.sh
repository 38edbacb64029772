# shellcheck shell=bash
# What the scripts of a private session share. Sourced.

fail_call() {
  echo "desktop-session: $1" >&2
  exit 64
}

# fail TEXT [LOG]: the session cannot come up; shows the end of the log that tells why.
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

# in_background LOG COMMAND...: its output goes to that log; $! is its process id.
in_background() {
  local log=$1
  shift
  "$@" >"$VORLI_SESSION_DIR/logs/$log" 2>&1 </dev/null &
}

# wait_until SECONDS COMMAND...: until the command succeeds; fails when the time is over.
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
