# shellcheck shell=bash
# shellcheck disable=SC2154  # root, logs and out come from ./run
# Visits Vorli for some minutes in a private desktop with the real helper. Sourced by ./run.

# Only root can remove root's files.
leave_visit() {
  [ ! -e "$logs/visit" ] || as_root chown -R "$(id -u):$(id -g)" "$logs/visit"
  as_root rm -rf "$stage"
  let_go_of_right
}

visit() {
  local status
  need_a_place_to_build
  may_become_root "run: the visit needs root for the packages that are missing and for the root daemon that it starts; \
sudo may ask for your password" ||
    stop "the visit needs root; without it, ./run in a desktop session builds and starts a Vorli that cannot polish"
  keep_right
  tools/setup build run desktop fonts || exit 1
  build
  out=$(readlink -m "$out")
  mkdir -p "$out" && [ -w "$out" ] || stop "$out cannot be written to: choose another place with --out"
  rm -f "$out"/{report.json,first-steps.png,rest.png,load.png,menu.png,about.png,vorli.log}
  stage=$(mktemp -d /tmp/vorli-visit.XXXXXX) || stop "no folder can be made in /tmp"
  trap leave_visit EXIT
  mkdir "$stage"/{prefix,tools,out}
  # The session's user may not be allowed to read this folder.
  cp -r tools/visit.py tools/session "$stage/tools/"
  chmod -R a+rX "$stage"
  chmod 1777 "$stage/out"
  quietly run-install.log "installing for the visit" \
    cmake --install build/package --strip --prefix "$stage/prefix"
  as_root chown -R root: "$stage/prefix"
  echo "run: visiting Vorli in a private desktop; no display is used"
  as_root "$root/tools/desktop-session.sh" --system-bus "$stage/prefix" --keep-logs "$logs/visit" \
    --timeout 600 -- /usr/bin/python3 "$stage/tools/visit.py" "$stage/prefix" "$stage/out"
  status=$?
  as_root chmod -R a+rX "$stage/out"
  cp "$stage/out"/* "$out/" 2>/dev/null
  [ $status = 0 ] || stop "the visit failed; what it left is in $out, its logs in $logs/visit"
  echo "run: pictures and report.json are in $out"
}
