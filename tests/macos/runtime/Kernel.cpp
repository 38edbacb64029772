#include "tests/macos/runtime/Kernel.h"

#include "tests/macos/runtime/State.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mach/mach_time.h>
#include <mach/vm_page_size.h>

namespace vorli::macfake {

namespace {

constexpr mach_port_t hostPort = 0x1503;
constexpr mach_port_t taskPort = 0x203;

KernelProcess* find(int pid) {
  auto& all = kernel().processes;
  const auto found =
      std::find_if(all.begin(), all.end(), [pid](const auto& each) { return each.pid == pid; });
  return found == all.end() ? nullptr : &*found;
}

int copyRecord(const void* record, int available, void* buffer, int size) {
  const int copied = std::min(available, size);
  std::memcpy(buffer, record, static_cast<std::size_t>(copied));
  return copied;
}

}  // namespace

static State<Kernel> kernelState;

Kernel& kernel() {
  return *kernelState;
}

KernelProcess& Kernel::add(int pid) {
  auto& process = processes.emplace_back();
  process.pid = pid;
  process.identity.pbi_pid = static_cast<std::uint32_t>(pid);
  return process;
}

}  // namespace vorli::macfake

using namespace vorli::macfake;

uintptr_t vm_kernel_page_size = 16384;

mach_port_t mach_host_self() {
  ++kernel().hostReferences;
  return hostPort;
}

mach_port_t vorli_task_self() {
  return taskPort;
}

kern_return_t mach_port_deallocate(mach_port_t task, mach_port_t port) {
  if (task != taskPort || port != hostPort || kernel().hostReferences == 0) return KERN_FAILURE;
  --kernel().hostReferences;
  return KERN_SUCCESS;
}

kern_return_t host_statistics(host_t host, host_flavor_t flavour, host_info_t info,
                              mach_msg_type_number_t* count) {
  if (host != hostPort || flavour != HOST_CPU_LOAD_INFO || *count < HOST_CPU_LOAD_INFO_COUNT)
    return KERN_FAILURE;
  if (kernel().status == KERN_SUCCESS) std::memcpy(info, &kernel().load, sizeof kernel().load);
  return kernel().status;
}

kern_return_t host_statistics64(host_t host, host_flavor_t flavour, host_info64_t info,
                                mach_msg_type_number_t* count) {
  if (host != hostPort || flavour != HOST_VM_INFO64) return KERN_FAILURE;
  kernel().askedMemoryWords = *count;
  if (kernel().status != KERN_SUCCESS) return kernel().status;
  *count = std::min(*count, kernel().memoryWords);
  std::memcpy(info, &kernel().memory, *count * sizeof(integer_t));
  return KERN_SUCCESS;
}

int sysctlbyname(const char* name, void* value, size_t* size, void*, size_t) {
  const auto found = kernel().values.find(name);
  if (found == kernel().values.end()) {
    errno = ENOENT;
    return -1;
  }
  const std::string& bytes = found->second;
  if (value && *size < bytes.size()) {
    errno = ENOMEM;
    return -1;
  }
  if (value) std::memcpy(value, bytes.data(), bytes.size());
  *size = bytes.size();
  return 0;
}

kern_return_t mach_timebase_info(mach_timebase_info_data_t* info) {
  *info = {kernel().timebase.first, kernel().timebase.second};
  return KERN_SUCCESS;
}

// Returns a number of processes, although it takes a size in bytes.
int proc_listallpids(void* buffer, int size) {
  kernel().listedSizes.push_back(size);
  if (!kernel().canList) return -1;
  const auto& all = kernel().processes;
  if (!buffer) return static_cast<int>(all.size());
  const auto room = static_cast<std::size_t>(size) / sizeof(std::int32_t);
  const std::size_t count = std::min(all.size(), room);
  for (std::size_t index = 0; index < count; ++index)
    static_cast<std::int32_t*>(buffer)[index] = all[index].pid;
  return static_cast<int>(count);
}

int proc_pidinfo(int pid, int flavour, uint64_t, void* buffer, int size) {
  const KernelProcess* const process = find(pid);
  if (process && flavour == PROC_PIDTASKINFO)
    return copyRecord(&process->usage, process->usageBytes, buffer, size);
  if (process && flavour == PROC_PIDTBSDINFO)
    return copyRecord(&process->identity, process->identityBytes, buffer, size);
  errno = ESRCH;
  return 0;
}

int proc_pidpath(int pid, void* buffer, uint32_t size) {
  const KernelProcess* const process = find(pid);
  if (!process || process->path.empty() || process->path.size() > size) return 0;
  std::memcpy(buffer, process->path.data(), process->path.size());
  return static_cast<int>(process->path.size());
}
