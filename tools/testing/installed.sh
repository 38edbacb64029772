# shellcheck shell=bash
# shellcheck disable=SC2154  # logs comes from steps.sh
# Tests of the installed program, each in a private desktop session. Sourced by ./test.
#
# Such a test is a file tests/desktop/*.py with lines "# session: OPTIONS". It runs once for each line, in a session
# with those options of tools/desktop-session.sh, where PREFIX stands for the installation. It has the variables
#   VORLI_PREFIX     the installation
#   VORLI_PICTURES   a folder for pictures, one PNG for each state, named after it
#   VORLI_VARIANT    the number of its line, from 1

pictures=$PWD/build/pictures

# prepare_installed PRESET: installs that build and the tests where any user can read them.
prepare_installed() {
  stage=$(mktemp -d /tmp/vorli-test.XXXXXX) || return
  mkdir "$stage"/{prefix,tools,tests,pictures} || return
  cp -r tools/session tools/*.py "$stage/tools/" && cp -r tests/desktop "$stage/tests/" || return
  chmod -R a+rX "$stage" && chmod 1777 "$stage/pictures" && cmake --install "build/$1" --strip --prefix "$stage/prefix"
}

# installed_tests: prints name, file and options of each test, separated by tabs.
installed_tests() {
  local file name count options
  for file in tests/desktop/*.py; do
    name=$(basename "$file" .py) count=0
    while IFS= read -r options; do
      count=$((count + 1))
      printf '%s\t%s\t%s\n' "$name-$count" "$file" "$options"
    done < <(sed -n 's/^# session: *//p' "$file")
  done
}

# run_installed NAME FILE OPTIONS
run_installed() {
  local options status
  # shellcheck disable=SC2206  # one word for each option
  options=(${3//PREFIX/$stage/prefix})
  install -d -m 1777 "$stage/pictures/$1"
  VORLI_PREFIX=$stage/prefix VORLI_PICTURES=$stage/pictures/$1 VORLI_VARIANT=${1##*-} \
    PYTHONPATH=$stage/tools/session PYTHONDONTWRITEBYTECODE=1 \
    tools/desktop-session.sh "${options[@]}" --timeout 600 --keep-logs "$logs/session-$1" -- \
    /usr/bin/python3 "$stage/$2"
  status=$?
  mkdir -p "$pictures/$1" && cp -r "$stage/pictures/$1/." "$pictures/$1/"
  rmdir --ignore-fail-on-non-empty "$pictures/$1"
  return $status
}

# Makes one sheet with all pictures of the rung, so that one file shows all states. The folder "states" has its own
# sheets.
contact_sheet() {
  local files
  mapfile -t files < <(find "$pictures" -name '*.png' ! -name contact-sheet.png ! -path '*/states/*' | sort)
  [ ${#files[@]} -gt 0 ] || return 1
  files=("${files[@]#"$pictures/"}")
  # Pictures are made small while they are read: all of them at full size need more memory than the program may have.
  (cd "$pictures" && montage -label '%d/%t' "${files[@]/%/[420x300>]}" -tile 4x -geometry '420x300>+10+10' \
    -background '#f4f2ee' contact-sheet.png)
}
