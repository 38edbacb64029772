# shellcheck shell=bash
# shellcheck disable=SC2034  # needed_by_... and beside_... are read by ./test
# Defines each rung of the test command, and the groups of tools/packages that it needs. What prepare_RUNG makes may be
# made ahead, beside the tests of an earlier rung. A rung with beside_RUNG runs beside those after it. Sourced by ./test
# and tools/testing/ahead.

needed_by_static=(build unit desktop static macos)
rung_static() {
  step "rules of the tree" tools/check_includes
  step "tests of the tools" tests/tools/run
  step "format" tools/check_format
  step "shell scripts" tools/check_shell
  build dev vorli_helper_contract_headers && step "clang-tidy" tools/check_tidy build/dev
}

needed_by_macos=(build unit macos)
rung_macos() {
  step "framework headers against facts" tools/check_frameworks
  step "property lists of the bundle" tests/macos/property_lists_test.py
  step "sources for macOS" tools/check_macos
  step "programs for macOS" tools/check_macos_programs
  step "macOS back end on fakes" tests/macos/run
}

needed_by_unit=(build unit fonts)
rung_unit() {
  build dev && ctest_step "unit tests" dev --label-exclude "desktop|helper"
}

needed_by_helper=(build run unit helper)
rung_helper() {
  end_ahead
  build dev vorli_plain_programs && build package || return
  # This test lays a file system over this folder, in which nothing may change meanwhile.
  step "Debian package" tests/packaging/run --no-build
  ahead
  step "promises of the root daemon" tests/daemon/run --no-build
  step "its client" tests/daemon/run_client
  step "logins of a user's service manager" tests/desktop/unit_logins.py build/dev/tests/vorli_startup_probe
  # Attackers keep both processors busy; beside other work the daemon would not keep up with what they send.
  end_ahead
  step "all of them at once, under attack" tests/daemon/run --no-build --soak 45
}

needed_by_desktop=(build run unit desktop test fonts)
rung_desktop() {
  local pictures=build/pictures
  rm -rf "$pictures" && mkdir -p "$pictures"
  build dev vorli_plain_programs && build package || return
  step "packaging" tools/testing/check_packaging.sh build/package
  ahead
  ctest_step "desktop sessions" dev --label-regex desktop --parallel 1
  must "contact sheet of the pictures" tools/testing/make_contact_sheet "$pictures"
}

needed_by_elsewhere=(fonts elsewhere)
# Tests there mostly wait.
beside_elsewhere=yes
prepare_elsewhere() {
  must "another release of Debian" tools/testing/elsewhere make && must "build there" tools/testing/elsewhere build
}
rung_elsewhere() {
  step "core on fakes there" tools/testing/elsewhere core
  step "unit tests there" tools/testing/elsewhere unit
  step "daemon's client there" tools/testing/elsewhere client
  step "promises of the root daemon there" tools/testing/elsewhere promises
  step "first minutes there" tools/testing/elsewhere minutes
  step "visit there" tools/testing/elsewhere visit
  step "installation and removal there" tools/testing/elsewhere removal
}

needed_by_asan=(build run unit helper fonts)
prepare_asan() { build asan; }
# Sanitizers would catch the crashes that the tests of crashes cause.
rung_asan() {
  ahead
  build dev vorli_plain_programs && ctest_step "tests of crashes" dev --label-regex '^crash$'
  ctest_step "unit tests under AddressSanitizer" asan --label-exclude desktop
  step "root daemon under AddressSanitizer" tests/daemon/run --build asan
}

needed_by_tsan=(build run unit helper fonts)
# Leaves out the drawing code, a quarter of the build, as it has only one thread. tests/CMakeLists.txt leaves out the
# tests of the core that start no other.
prepare_tsan() {
  build tsan vorli_unit_tests vorli_linux_tests vorli_linux_daemon_tests vorli_helper_client_tests vorli-helper
}
rung_tsan() {
  ahead
  ctest_step "unit tests under ThreadSanitizer" tsan --label-exclude "desktop|ui"
  step "root daemon under ThreadSanitizer" tests/daemon/run --build tsan
}

needed_by_fuzz=(build unit static)
prepare_fuzz() { must "build fuzzers" tests/fuzz/run --build; }
rung_fuzz() {
  step "fuzzers" tests/fuzz/run
}
