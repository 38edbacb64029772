#pragma once

#include <libproc.h>
#include <mach/mach.h>
#include <map>
#include <string>
#include <sys/sysctl.h>
#include <utility>
#include <vector>

namespace vorli::macfake {

/// One process of the fake kernel.
struct KernelProcess {
  int pid = 0;
  proc_taskinfo usage{};
  proc_bsdinfo identity{};
  std::string path;
  int usageBytes = sizeof(proc_taskinfo);  // that the kernel fills; fewer: the caller may not read it
  int identityBytes = sizeof(proc_bsdinfo);
};

/// The kernel as the code under test sees it.
struct Kernel {
  int hostReferences = 0;
  kern_return_t status = KERN_SUCCESS;
  vm_statistics64 memory{};
  /// Words of `memory` that this kernel knows.
  mach_msg_type_number_t memoryWords = sizeof(vm_statistics64) / sizeof(integer_t);
  mach_msg_type_number_t askedMemoryWords = 0;
  host_cpu_load_info load{};
  /// The bytes of each value by its name.
  std::map<std::string, std::string> values;
  std::pair<std::uint32_t, std::uint32_t> timebase{125, 3};
  std::vector<KernelProcess> processes;
  bool canList = true;
  std::vector<int> listedSizes;  // of the buffers, in bytes

  KernelProcess& add(int pid);
  template <typename Value>
  void setValue(const std::string& name, const Value& value) {
    values[name] = std::string(reinterpret_cast<const char*>(&value), sizeof value);
  }
};

Kernel& kernel();

}  // namespace vorli::macfake
