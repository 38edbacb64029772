# shellcheck shell=bash
# shellcheck disable=SC2154  # stage and pictures come from installed.sh
# What each rung of the test command does. Sourced by ./test.

rung_static() {
  step "rules of the tree" tools/check_includes
  local script
  for script in tests/tools/*_test.py; do step "$(basename "$script")" /usr/bin/python3 "$script"; done
  step "format" tools/check_format
  step "shell scripts" tools/check_shell
  build dev vorli_helper_contract_headers && step "clang-tidy" tools/check_tidy build/dev
}

rung_unit() {
  build dev && ctest_step "unit tests" dev --label-exclude "desktop|helper"
}

rung_helper() {
  build dev && build package || return
  step "promises of the root daemon" tests/helper/run --no-build
  step "its client" tests/helper/run_client
  step "Debian package" tests/packaging/run --no-build
}

# The tests that bring their own programs and sessions are known to ctest; the others drive the installed program.
rung_desktop() {
  local name file options
  rm -rf "$pictures" && mkdir -p "$pictures"
  build dev && ctest_step "parts in a desktop" dev --label-regex desktop --parallel 1
  build package && must "install for the tests" prepare_installed package || return
  step "packaging" tools/testing/check_packaging.sh "$stage/prefix"
  while IFS=$'\t' read -r name file options; do
    step "$name" run_installed "$name" "$file" "$options"
  done < <(installed_tests)
  must "contact sheet of the pictures" contact_sheet
}

rung_asan() {
  build asan && ctest_step "unit tests under AddressSanitizer" asan --label-exclude desktop
  step "root daemon under AddressSanitizer" tests/helper/run --build asan
}

rung_tsan() {
  build tsan && ctest_step "unit tests under ThreadSanitizer" tsan --label-exclude desktop
  step "root daemon under ThreadSanitizer" tests/helper/run --build tsan
}

rung_fuzz() {
  step "fuzzers" tests/fuzz/run
}
