#!/usr/bin/env bash
# check_packaging.sh BUILD: checks that what this build tree installs is complete and well-formed.
set -u
prefix=$(mktemp -d) passed=0 failed=0
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --strip --prefix "$prefix" >"$prefix/log" || { cat "$prefix/log" && exit 1; }

check() { # check WHAT COMMAND...
  local what=$1
  shift
  if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)) && echo "FAILED: $what"; fi
}

icon_has_size() { # SIZE
  local file=$prefix/share/icons/hicolor/$1x$1/apps/com.kv.vorli.png
  [ "$(identify -format '%wx%h' "$file")" = "$1x$1" ]
}

icon_of_policy() {
  sed -n 's|.*<icon_name>\(.*\)</icon_name>.*|\1|p' "$prefix/share/polkit-1/actions/com.kv.vorli.helper.policy"
}

# Succeeds when there are no warnings on standard error.
manual_is_clean() { # FILE
  [ -f "$1" ] && [ -z "$(LC_ALL=C.UTF-8 zcat "$1" | groff -man -Tutf8 -ww -z 2>&1)" ]
}

is_stripped() { ! readelf --section-headers --wide "$1" | grep -qE ' \.(symtab|debug_info) '; } # FILE

check "desktop entry" desktop-file-validate "$prefix/share/applications/com.kv.vorli.desktop"
check "desktop entry starts this program" grep -qx "Exec=$prefix/bin/vorli" "$prefix/share/applications/com.kv.vorli.desktop"
check "session service starts this program" grep -qx "Exec=$prefix/bin/vorli" "$prefix/share/dbus-1/services/com.kv.vorli.service"
check "catalogue entry" appstreamcli validate --no-net "$prefix/share/metainfo/com.kv.vorli.metainfo.xml"
for size in 16 22 24 32 48 64 128 256 512; do check "icon of $size pixels" icon_has_size $size; done
check "program" test -x "$prefix/bin/vorli"
check "icon of the password window" test -f "$prefix/share/icons/hicolor/48x48/apps/$(icon_of_policy).png"
for page in man1/vorli.1 man8/vorli-helper.8; do check "manual page $page" manual_is_clean "$prefix/share/man/$page.gz"; done
for program in bin/vorli libexec/vorli/vorli-helper; do check "$program has no symbols" is_stripped "$prefix/$program"; done
check "daemon" test -x "$prefix/libexec/vorli/vorli-helper"
check "fonts" test "$(find "$prefix/share/vorli/fonts" -name '*.ttf' | wc -l)" = 6
check "licences of the fonts" test "$(find "$prefix/share/vorli/fonts" -name '*-LICENSE.txt' | wc -l)" = 2
check "no back door in the daemon" sh -c '! strings -a "$1" | grep -E "VORLI_[A-Z]+|unix-process"' - "$prefix/libexec/vorli/vorli-helper"
echo "$passed passed, $failed failed"
[ $failed = 0 ]
