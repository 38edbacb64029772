#!/bin/sh
# polkitd.sh FOLDER: the real polkitd, in a mount namespace of its own, with the session and the actions of FOLDER.
set -e
mount -t cgroup2 none /sys/fs/cgroup
mkdir -p /run/systemd
mount -t tmpfs -o mode=755 tmpfs /run/systemd
cp -r "$1"/login/* /run/systemd/
mount --bind "$1/actions" /usr/share/polkit-1/actions
exec /usr/lib/polkit-1/polkitd --no-debug
