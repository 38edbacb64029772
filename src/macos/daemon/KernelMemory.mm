#include "macos/daemon/KernelMemory.h"

#include "macos/daemon/Tool.h"

#include <array>
#include <cstring>
#include <mach/vm_page_size.h>
#include <unistd.h>

namespace vorli::machost {

namespace {

constexpr char purgeTool[] = "/usr/sbin/purge";
// Together with the wait for the write-back, shorter than the deadline of the daemon's answer.
constexpr double purgeSeconds = 14.0;
// Words of the record on current systems; the kernel fills as many as both sides know.
constexpr mach_msg_type_number_t recordWords = 62;
static_assert(sizeof(vm_statistics64) <= recordWords * sizeof(integer_t));

}  // namespace

KernelMemory::KernelMemory() : host_(mach_host_self()), sync_(dispatch_group_create()) {}

KernelMemory::~KernelMemory() {
  mach_port_deallocate(mach_task_self(), host_);
}

std::optional<daemon::MemoryReading> KernelMemory::read() {
  std::array<integer_t, recordWords> words{};
  mach_msg_type_number_t count = recordWords;
  if (host_statistics64(host_, HOST_VM_INFO64, words.data(), &count) != KERN_SUCCESS) return std::nullopt;
  vm_statistics64 kernel{};
  std::memcpy(&kernel, words.data(), sizeof kernel);
  const auto bytes = [](std::uint64_t pages) { return pages * vm_kernel_page_size; };
  return daemon::MemoryReading{
      .freeBytes = bytes(kernel.free_count),
      .availableBytes = bytes(std::uint64_t{kernel.free_count} + kernel.inactive_count),
      .pageCacheBytes = bytes(kernel.external_page_count),
      .reclaimableSlabBytes = 0,
  };
}

// Runs one write-back at a time: a stuck disk would otherwise block one more thread with each purge.
bool KernelMemory::syncWithin(double seconds) {
  if (dispatch_group_wait(sync_, DISPATCH_TIME_NOW) == 0) {
    dispatch_group_async(sync_, dispatch_get_global_queue(QOS_CLASS_UTILITY, 0), ^{
      ::sync();
    });
  }
  const auto limit = static_cast<std::int64_t>(seconds * static_cast<double>(NSEC_PER_SEC));
  return dispatch_group_wait(sync_, dispatch_time(DISPATCH_TIME_NOW, limit)) == 0;
}

std::expected<void, daemon::SystemError> KernelMemory::dropPageCache() {
  const auto run = runTool(purgeTool, {}, purgeSeconds);
  if (!run) return std::unexpected(run.error());
  if (run->exitStatus != 0) return std::unexpected(daemon::SystemError{run->exitStatus, run->output});
  return {};
}

}  // namespace vorli::machost
