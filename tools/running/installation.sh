# shellcheck shell=bash
# shellcheck disable=SC2154  # root, logs and prefix come from ./run
# Installs and removes the program. Sourced by ./run.
#
# PREFIX/share/vorli/installed lists the files and folders of an installation, folders with a slash at the end and
# before their contents.

installed_list() { echo "$prefix/share/vorli/installed"; }

# Files of packages must not be overwritten: root's installation and the package share the folder of polkit's actions.
refuse_beside_a_package() {
  [ "$(id -u)" = 0 ] && [ "$(dpkg-query -W -f '${db:Status-Status}' vorli 2>/dev/null)" = installed ] || return 0
  stop "the package vorli is installed here: remove it first (apt-get remove vorli)"
}

refuse_foreign_place() {
  local place=$prefix
  while [ ! -e "$place" ]; do place=$(dirname "$place"); done
  [ -d "$place" ] && [ -w "$place" ] || stop "$place cannot be written to: choose another place with --prefix"
}

# Installs everything below build/installed first.
stage_installation() {
  stage=$root/build/installed
  rm -rf "$stage"
  quietly run-install.log "installing under $prefix" \
    env "DESTDIR=$stage" cmake --install build/package --strip --prefix "$prefix"
}

# Lists an existing folder only when an earlier installation made it.
list_installation() {
  local previous=$1 path
  mkdir -p "$stage$prefix/share/vorli" && touch "$stage$(installed_list)"
  find "$stage" -mindepth 1 \( -type d -printf '/%P/\n' -o -printf '/%P\n' \) | LC_ALL=C sort |
    while IFS= read -r path; do
      [[ $path == */ && -d $path ]] && ! grep -qxF -- "$path" "$previous" || printf '%s\n' "$path"
    done >"$stage.list" && mv "$stage.list" "$stage$(installed_list)"
}

# put_file PATH: replaces the file atomically, and only if it differs, because a running program notices a replacement.
put_file() {
  local new=$1.vorli-new
  if cmp -s "$stage$1" "$1"; then return; fi
  cp --preserve=mode "$stage$1" "$new" && mv -f "$new" "$1" || { rm -f "$new"; return 1; }
}

put_in_place() {
  local path
  mkdir -p "$prefix/share/vorli" && put_file "$(installed_list)" || return
  while IFS= read -r path; do
    case $path in
      */) mkdir -p "$path" ;;
      *) mkdir -p "${path%/*}" && put_file "$path" ;;
    esac || return
  done <"$stage$(installed_list)"
}

install_program() {
  local previous=$root/build/previously-installed path
  cp "$(installed_list)" "$previous" 2>/dev/null || : >"$previous"
  stage_installation
  list_installation "$previous"
  put_in_place 2>"$logs/run-install.log" || give_up run-install.log "installing under $prefix"
  # Removes files that only the older version had.
  while IFS= read -r path; do
    [[ $path == */ ]] || grep -qxF -- "$path" "$(installed_list)" || rm -f -- "$path"
  done <"$previous"
  rm -rf "$stage" "$previous"
}

# Removes the list after the files, so that an interrupted removal can be finished, and before its own folder.
remove_installed_files() {
  local list paths path number failed=no
  list=$(installed_list)
  if [ ! -f "$list" ]; then
    echo "run: ./run has installed nothing under $prefix" >&2
    return 1
  fi
  [ -w "$list" ] || stop "$prefix belongs to somebody else: run this as the user who installed it"
  remove_autostart_entry
  mapfile -t paths <"$list"
  for path in "${paths[@]}"; do
    [[ $path == */ || $path = "$list" ]] || rm -f -- "$path" || failed=yes
  done
  [ $failed = no ] && rm -f -- "$list" || return
  # A folder may contain other files by now.
  for ((number = ${#paths[@]} - 1; number >= 0; number--)); do
    path=${paths[number]}
    [[ $path != */ || ! -d $path ]] || rmdir --ignore-fail-on-non-empty -- "$path" || failed=yes
  done
  [ $failed = no ]
}

# An entry that starts this program at login is part of the installation.
remove_autostart_entry() {
  local entry=${XDG_CONFIG_HOME:-$HOME/.config}/autostart/com.kv.vorli.desktop
  ! grep -qF "$prefix/bin/vorli" "$entry" 2>/dev/null || rm -f -- "$entry"
}

remove_settings() {
  rm -rf -- "${XDG_CONFIG_HOME:-$HOME/.config}/Vorli" "${XDG_STATE_HOME:-$HOME/.local/state}/Vorli" \
    "${XDG_DATA_HOME:-$HOME/.local/share}/Vorli"
}

# running_programs replaced|every: process ids of this installation's program; with `replaced`, of older versions only.
running_programs() {
  local process program
  for process in /proc/[0-9]*; do
    program=$(readlink "$process/exe" 2>/dev/null) || continue
    [ "$program" = "$prefix/bin/vorli (deleted)" ] || { [ "$1" = every ] && [ "$program" = "$prefix/bin/vorli" ]; } ||
      continue
    echo "${process#/proc/}"
  done
}

# end_running_program replaced|every: asks it to quit, as the end of a session does.
end_running_program() {
  local looks=100 processes
  processes=$(running_programs "$1")
  [ -n "$processes" ] || return 0
  echo "run: ending the Vorli that is running"
  # shellcheck disable=SC2086
  kill $processes 2>/dev/null
  while [ -n "$(running_programs "$1")" ]; do
    looks=$((looks - 1))
    [ $looks -gt 0 ] || stop "the running Vorli (process $processes) does not end"
    sleep 0.1
  done
}
