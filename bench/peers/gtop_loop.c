// gtop_loop COUNT: lists all processes COUNT times with the library of two desktops' system monitors.

#include <glib.h>
#include <glibtop.h>
#include <glibtop/procmem.h>
#include <glibtop/proclist.h>
#include <glibtop/procstate.h>
#include <glibtop/proctime.h>
#include <glibtop/procuid.h>
#include <stdlib.h>

int main(int argc, char** argv) {
  const int count = argc == 2 ? atoi(argv[1]) : 1;
  glibtop_init();
  for (int i = 0; i < count; ++i) {
    glibtop_proclist list;
    pid_t* const pids = glibtop_get_proclist(&list, GLIBTOP_KERN_PROC_ALL, 0);
    for (unsigned n = 0; n < list.number; ++n) {
      glibtop_proc_state state;
      glibtop_proc_time time;
      glibtop_proc_mem memory;
      glibtop_proc_uid user;
      glibtop_get_proc_state(&state, pids[n]);
      glibtop_get_proc_time(&time, pids[n]);
      glibtop_get_proc_mem(&memory, pids[n]);
      glibtop_get_proc_uid(&user, pids[n]);
    }
    g_free(pids);
  }
  return 0;
}
