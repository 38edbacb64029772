# shellcheck shell=bash
# Gets root's rights through sudo, asking for the password once. Sourced.

# as_root COMMAND...
as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo -- "$@"; fi
}

# may_become_root REASON: prints the reason and asks for the password, if one is necessary.
may_become_root() {
  [ "$(id -u)" != 0 ] || return 0
  command -v sudo >/dev/null || return 1
  ! sudo -n true 2>/dev/null || return 0
  echo "$1"
  sudo -v
}
