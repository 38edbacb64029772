# shellcheck shell=bash
# shellcheck disable=SC2154  # root and logs come from ./run
# Builds what users get. Sourced by ./run.

# Megabytes that the first build and a later one need.
first_build_megabytes=600 next_build_megabytes=60

need_a_place_to_build() {
  local needed=$first_build_megabytes free
  if ! mkdir -p "$logs" 2>/dev/null || [ ! -w "$logs" ]; then
    stop "$root/build cannot be written to: copy this folder to a place of your own and run it there"
  fi
  [ ! -x build/package/src/vorli ] || needed=$next_build_megabytes
  free=$(df --output=avail -BM build | tail -n 1 | tr -dc 0-9)
  [ "$free" -ge $needed ] || stop "building needs $needed MB in $root, and $free MB are free"
}

# attempt LOG COMMAND...: runs it in English and UTF-8, so that its messages can be understood.
attempt() {
  local log=$logs/$1
  shift
  mkdir -p "$logs" && env LC_ALL=C.UTF-8 "$@" >"$log" 2>&1 </dev/null
}

# True also when a few kilobytes are left: no compiler's output fits into them.
disk_is_full() {
  [ "$(df --output=avail -BK build | tail -n 1 | tr -dc 0-9)" -lt 4096 ]
}

# give_up LOG WHAT
give_up() {
  # A full disk may have no room for the message either.
  if grep -qs 'No space left on device' "$logs/$1" || disk_is_full; then
    stop "$2 failed: the disk is full; log in $logs/$1"
  fi
  tail -n 30 "$logs/$1" >&2
  stop "$2 failed, log in $logs/$1"
}

# quietly LOG WHAT COMMAND...
quietly() {
  local log=$1 what=$2
  shift 2
  echo "run: $what"
  attempt "$log" "$@" || give_up "$log" "$what"
}

# Configures afresh if the build folder was made elsewhere or for older sources.
configure() {
  echo "run: configuring"
  attempt run-configure.log cmake --preset package -Wno-dev ||
    attempt run-configure.log cmake --preset package -Wno-dev --fresh || give_up run-configure.log "configuring"
}

build() {
  configure
  echo "run: building; a few minutes the first time, then seconds"
  attempt run-build.log cmake --build --preset package || give_up run-build.log "building"
}
