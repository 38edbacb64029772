#!/bin/sh
# with-login.sh FOLDER COMMAND...: runs the command, in its own mount namespace, with the login session and the polkit
# actions of FOLDER.
set -e
folder=$1
shift
mount -t cgroup2 none /sys/fs/cgroup
mkdir -p /run/systemd
mount -t tmpfs -o mode=755 tmpfs /run/systemd
cp -r "$folder"/login/* /run/systemd/
mount --bind "$folder/actions" /usr/share/polkit-1/actions
exec "$@"
