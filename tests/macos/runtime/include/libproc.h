#pragma once

#include <sys/proc_info.h>

extern "C" {
int proc_listallpids(void* buffer, int size);
int proc_pidinfo(int pid, int flavour, uint64_t argument, void* buffer, int size);
int proc_pidpath(int pid, void* buffer, uint32_t size);
}
