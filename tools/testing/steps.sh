# shellcheck shell=bash
# shellcheck disable=SC2154  # later comes from ./test
# The steps of the test command: each runs something with its output in a log, prints its result in one line, and
# adds to the counts. Sourced by ./test.

logs=$PWD/build/logs
passed=0 failed=0
failures=()
ahead='' beside=''
# The keys of a terminal interrupt only what is in its foreground.
foreground=()
[ ! -t 2 ] || foreground=(--foreground)
mkdir -p "$logs"

# begin NAME: prints the name of the running step on a terminal.
begin() { [ ! -t 1 ] || printf '  ...   %s\r' "$1"; }

# Prints the reason of a failure from a log: lines with an error and those after them, or else the end of the log.
why() {
  grep -v '^ *kept ' "$1" | grep -E -A 3 -e '^ *(BROKEN|FAILED|FAIL:|ERROR:)' -e ': Failure$' -e '(^| |[a-z])[Ee]rror: ' -e 'Sanitizer: ' \
    -e '\*\*\*|tests FAILED|took too long|was skipped' | head -n 25 | cut -c 1-240 | grep . || tail -n 25 "$1"
}

# tell NAME GOOD BAD SECONDS LOG: prints a result and adds it to the counts; a failure with its reason from the log.
tell() {
  passed=$((passed + $2)) failed=$((failed + $3))
  if [ "$3" -eq 0 ]; then
    printf '  ok    %-34s %5d tests %4d s\n' "$1" "$2" "$4"
  else
    failures+=("$1")
    printf '  FAILED %-33s %5d of %d, log in %s\n' "$1" "$3" $(($2 + $3)) "${5#"$PWD/"}"
    why "$5" | sed 's/^/      | /'
  fi
}

# log_of NAME: prints the file for the output of a step.
log_of() {
  local name=${1//[^A-Za-z0-9._-]/-}
  mkdir -p "$logs"
  echo "$logs/$name.log"
}

# counts_of LOG: prints "PASSED FAILED" if the log ends with "N passed, N failed" or like Python's tests.
counts_of() {
  tail -n 3 "$1" | awk '
    /^[0-9]+ passed, [0-9]+ failed$/ { print $1, $3 + 0 }
    /^Ran [0-9]+ tests? in / { ran = $2; isSuite = 1 }
    /^OK/ && isSuite { print ran, (ran == 0) }
    /^FAILED \(/ { gsub(/[^0-9]+/, " "); bad = $1 + $2; print (ran > bad ? ran - bad : 0), bad }'
}

# bounded COMMAND...: ends the command after a time limit, which only a hanging one reaches, and with this shell.
bounded() {
  local status
  setpriv --pdeathsig TERM timeout "${foreground[@]}" --kill-after=10 "${VORLI_STEP_SECONDS:-2400}" "$@"
  status=$?
  [ $status != 124 ] && [ $status != 137 ] || echo "This took too long and was ended."
  return $status
}

# step NAME COMMAND...: runs one test, or as many as its log counts.
step() {
  local name=$1 log start=$SECONDS status counts
  shift
  log=$(log_of "$name")
  begin "$name"
  bounded "$@" >"$log" 2>&1 </dev/null
  status=$?
  counts=$(counts_of "$log")
  [ -n "$counts" ] || counts=$([ $status = 0 ] && echo "1 0" || echo "0 1")
  # shellcheck disable=SC2086  # two numbers
  set -- $counts
  if [ "$2" = 0 ] && [ $status != 0 ]; then set -- "$1" 1; fi
  if [ "$2" = 0 ] && grep -qE 'skipped=[1-9]|\[ *SKIPPED *\]|[1-9][0-9]* skipped' "$log"; then
    echo "A test was skipped; a skipped test is a failed one." >>"$log"
    set -- "$1" 1
  fi
  tell "$name" "$1" "$2" $((SECONDS - start)) "$log"
  [ "$2" = 0 ]
}

# must NAME COMMAND...: runs a prerequisite of the next steps. It is no test, and counts only if it fails.
must() {
  local name=$1 log start=$SECONDS
  shift
  log=$(log_of "$name")
  begin "$name"
  if bounded "$@" >"$log" 2>&1 </dev/null; then
    printf '  done  %-34s             %4d s\n' "$name" $((SECONDS - start))
  else
    tell "$name" 0 1 $((SECONDS - start)) "$log"
    return 1
  fi
}

build() { # build PRESET [TARGET...]
  local preset=$1 light=()
  shift
  [ $# -eq 0 ] || set -- --target "$@"
  # Nobody debugs or rebuilds what CI builds, so sources are compiled several at a time, and debug information is just
  # enough for a stack trace.
  [ -z "${CI-}" ] || light=(-DCMAKE_UNITY_BUILD=ON -DCMAKE_CXX_FLAGS_DEBUG=-g1 "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g1 -DNDEBUG")
  must "configure $preset" cmake --preset "$preset" -Wno-dev "${light[@]}" && must "build $preset" cmake --build --preset "$preset" "$@"
}

# ctest_step NAME PRESET [ARGUMENT...]: runs and counts the tests of a build tree; skipped ones count as failed.
ctest_step() {
  local name=$1 preset=$2 log report start=$SECONDS counts
  shift 2
  log=$(log_of "$name")
  report=${log%.log}.xml
  rm -f "$report"
  begin "$name"
  setpriv --pdeathsig TERM ctest --preset "$preset" --parallel "$(nproc)" --timeout 120 --output-junit "$report" --test-output-size-passed 65536 \
    --test-output-truncation head "$@" >"$log" 2>&1 </dev/null
  counts=$(/usr/bin/python3 tools/testing/count_junit.py "$report") || counts="0 1"
  # shellcheck disable=SC2086
  set -- $counts
  tell "$name" "$1" "$2" $((SECONDS - start)) "$log"
  [ "$2" = 0 ]
}

# apart LOG COMMAND...: begins a command in a session of its own. $! is the session's id. The whole session ends if this
# shell is killed.
apart() {
  local log=$1
  shift
  # A trap runs at once only while the shell waits for a job.
  # shellcheck disable=SC2016
  setsid setpriv --pdeathsig TERM bash -c 'trap "trap - TERM && pkill --session $$" TERM; "$@" & wait $!' apart "$@" \
    >"$log" 2>&1 </dev/null &
}

# end_apart SESSION: ends it. Once it has ended by itself, its number may belong to somebody else.
end_apart() {
  jobs -rp | grep -qx "$1" || return 0
  # A compiler that is told to end removes the file that it has begun.
  pkill --session "$1"
  local deadline=$((SECONDS + 30))
  while pgrep --session "$1" --runstates D,R,S,T >/dev/null; do
    [ $SECONDS -lt $deadline ] || pkill -KILL --session "$1"
    timeout 1 pidwait --session "$1" >/dev/null
  done
  wait "$1" 2>/dev/null
}

# ahead: begins with what the later rungs need, beside the next steps.
ahead() {
  [ ${#later[@]} -gt 0 ] || return 0
  end_ahead
  apart "$(log_of ahead)" tools/testing/ahead "${later[@]}"
  ahead=$!
}

end_ahead() {
  [ -z "$ahead" ] || end_apart "$ahead"
  ahead=''
}

# beside RUNG: begins a rung beside the next ones, as a test command of its own.
beside() {
  printf '  runs beside the next ones\n'
  apart "$(log_of "$1")" env VORLI_SET_UP=done ./test "$1"
  beside=$1 beside_session=$!
}

# join: waits for the rung that runs beside the others, shows its lines and adds its counts.
join() {
  local log good bad failure status=0 known=${#failures[@]}
  [ -n "$beside" ] || return 0
  log=$(log_of "$beside")
  wait "$beside_session" || status=1
  echo "== $beside, until $((SECONDS / 60)) min"
  # A command that was killed has printed neither its counts nor its failures.
  read -r good bad < <(counts_of "$log" | grep . || echo "0 1")
  [ "$bad" != 0 ] || bad=$status
  if grep -q '^== ' "$log"; then
    sed '0,/^== /d; /^$/,$d' "$log"
  else
    cat "$log"
  fi
  while IFS= read -r failure; do failures+=("$failure"); done < <(sed -n 's/^failed: //p' "$log")
  [ "$bad" = 0 ] || [ ${#failures[@]} -gt "$known" ] || failures+=("$beside")
  passed=$((passed + good)) failed=$((failed + bad))
  beside=''
}

# Ends what still runs beside this shell.
leave() {
  end_ahead
  [ -z "$beside" ] || end_apart "$beside_session"
}

close() {
  printf '%s\n' "" "took $((SECONDS / 60)) min $((SECONDS % 60)) s"
  [ ${#failures[@]} -eq 0 ] || printf 'failed: %s\n' "${failures[@]}"
  [ $((passed + failed)) -gt 0 ] || failed=1
  echo "$passed passed, $failed failed"
  [ $failed -eq 0 ]
}
