// procps_loop COUNT: lists all processes COUNT times with the library of ps and top, as a monitor would.

#include <libproc2/pids.h>
#include <stdio.h>
#include <stdlib.h>

int main(int argc, char** argv) {
  const int count = argc == 2 ? atoi(argv[1]) : 1;
  enum pids_item items[] = {PIDS_ID_PID, PIDS_ID_PPID, PIDS_CMD, PIDS_MEM_RES, PIDS_TICS_ALL, PIDS_TIME_START};
  struct pids_info* info = NULL;
  if (procps_pids_new(&info, items, 6) < 0) return 1;
  for (int i = 0; i < count; ++i) {
    struct pids_fetch* fetched = procps_pids_reap(info, PIDS_FETCH_TASKS_ONLY);
    if (!fetched || fetched->counts->total < 1) return 1;
  }
  procps_pids_unref(&info);
  return 0;
}
