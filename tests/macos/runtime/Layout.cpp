#include <libproc.h>
#include <mach-o/loader.h>
#include <mach-o/nlist.h>
#include <mach/mach.h>
#include <stddef.h>
#include <sys/event.h>
#include <sys/sysctl.h>

// Facts about the kernel's records. They are checked here and with the system's own headers, so that the
// records of the fake kernel cannot drift from them.

static_assert(HOST_CPU_LOAD_INFO == 3 && HOST_CPU_LOAD_INFO_COUNT == 4);
static_assert(CPU_STATE_USER == 0 && CPU_STATE_SYSTEM == 1 && CPU_STATE_IDLE == 2 && CPU_STATE_NICE == 3);

static_assert(HOST_VM_INFO64 == 4 && KERN_SUCCESS == 0);
static_assert(sizeof(vm_statistics64) == 152);
static_assert(offsetof(vm_statistics64, pageins) == 32 && offsetof(vm_statistics64, pageouts) == 40);
static_assert(offsetof(vm_statistics64, purgeable_count) == 88);
static_assert(offsetof(vm_statistics64, speculative_count) == 92);
static_assert(offsetof(vm_statistics64, decompressions) == 96);
static_assert(offsetof(vm_statistics64, compressions) == 104);
static_assert(offsetof(vm_statistics64, swapins) == 112 && offsetof(vm_statistics64, swapouts) == 120);
static_assert(offsetof(vm_statistics64, compressor_page_count) == 128);
static_assert(offsetof(vm_statistics64, external_page_count) == 136);

static_assert(sizeof(xsw_usage) == 32 && offsetof(xsw_usage, xsu_used) == 16);

static_assert(EVFILT_TIMER == -7 && EV_ADD == 1 && EV_DELETE == 2 && EV_ONESHOT == 16);
static_assert(NOTE_NSECONDS == 4 && NOTE_CRITICAL == 32);
static_assert(sizeof(struct kevent) == 32 && offsetof(struct kevent, data) == 16);

static_assert(MH_MAGIC_64 == 0xfeedfacf && LC_SYMTAB == 2 && LC_SEGMENT_64 == 25);
static_assert(sizeof(mach_header_64) == 32 && offsetof(mach_header_64, ncmds) == 16);
static_assert(sizeof(segment_command_64) == 72 && offsetof(segment_command_64, vmaddr) == 24);
static_assert(offsetof(segment_command_64, vmsize) == 32 && offsetof(segment_command_64, fileoff) == 40);
static_assert(sizeof(symtab_command) == 24 && offsetof(symtab_command, symoff) == 8);
static_assert(offsetof(symtab_command, stroff) == 16 && offsetof(symtab_command, strsize) == 20);
static_assert(sizeof(nlist_64) == 16 && offsetof(nlist_64, n_type) == 4 && offsetof(nlist_64, n_value) == 8);
static_assert(N_STAB == 0xe0 && N_TYPE == 14 && N_SECT == 14);

static_assert(PROC_PIDTBSDINFO == 3 && PROC_PIDTASKINFO == 4 && PROC_PIDPATHINFO_MAXSIZE == 4096);
static_assert(sizeof(proc_taskinfo) == 96);
static_assert(offsetof(proc_taskinfo, pti_resident_size) == 8);
static_assert(offsetof(proc_taskinfo, pti_total_user) == 16 &&
              offsetof(proc_taskinfo, pti_total_system) == 24);
static_assert(sizeof(proc_bsdinfo) == 136);
static_assert(offsetof(proc_bsdinfo, pbi_ppid) == 16 && offsetof(proc_bsdinfo, pbi_uid) == 20);
static_assert(offsetof(proc_bsdinfo, pbi_ruid) == 28 && offsetof(proc_bsdinfo, pbi_svuid) == 36);
static_assert(offsetof(proc_bsdinfo, pbi_comm) == 48 && offsetof(proc_bsdinfo, pbi_name) == 64);
static_assert(offsetof(proc_bsdinfo, pbi_start_tvsec) == 120);
static_assert(offsetof(proc_bsdinfo, pbi_start_tvusec) == 128);
