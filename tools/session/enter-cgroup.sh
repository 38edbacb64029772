#!/bin/sh
# enter-cgroup.sh FOLDER COMMAND...: runs the command as a member of that control group.
echo $$ >"$1/cgroup.procs" || exit 70
shift
exec "$@"
