#include "linux/daemon/KernelMemory.h"

#include "daemon/SystemError.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {

namespace {

std::string memoryInformation() {
  const posix::FileDescriptor file(::open("/proc/meminfo", O_RDONLY | O_CLOEXEC));
  char text[8192];
  const auto size = file ? ::read(file.get(), text, sizeof text) : 0;
  return size > 0 ? std::string(text, static_cast<std::size_t>(size)) : std::string();
}

// Lines of the form "MemFree:    23427 kB".
std::uint64_t bytesOf(const std::string& information, const std::string& key) {
  const auto line = ("\n" + information).find("\n" + key + ":");
  if (line == std::string::npos) return 0;
  return std::strtoull(information.c_str() + line + key.size() + 1, nullptr, 10) << 10;
}

}  // namespace

/// One run of sync(2), which may hang forever on a broken disk and cannot be cancelled.
struct KernelMemory::Sync {
  std::mutex lock;
  std::condition_variable changed;
  bool running = false;
};

MemoryLever::MemoryLever(const char* path)
    : file_(::open(path, O_WRONLY | O_CLOEXEC)), error_(file_ ? 0 : errno) {}

// Always writes at offset 0: the kernel reports success for a write at another offset, but does nothing.
std::expected<void, daemon::SystemError> MemoryLever::pull(std::string_view value) const {
  if (!file_) return std::unexpected(daemon::systemError(error_));
  if (::pwrite(file_.get(), value.data(), value.size(), 0) < 0) return daemon::lastError();
  return {};
}

KernelMemory::KernelMemory(MemoryLevers levers)
    : levers_(std::move(levers)), sync_(std::make_shared<Sync>()) {}

std::optional<daemon::MemoryReading> KernelMemory::read() {
  const auto information = memoryInformation();
  if (information.empty()) return std::nullopt;
  return daemon::MemoryReading{
      .freeBytes = bytesOf(information, "MemFree"),
      .availableBytes = bytesOf(information, "MemAvailable"),
      .pageCacheBytes = bytesOf(information, "Cached") + bytesOf(information, "Buffers"),
      .reclaimableSlabBytes = bytesOf(information, "SReclaimable"),
  };
}

// Waits for a sync that is still running instead of starting another, so that at most one thread can hang.
bool KernelMemory::syncWithin(double seconds) {
  std::unique_lock guard(sync_->lock);
  if (!sync_->running) {
    std::thread([sync = sync_] {
      ::sync();
      const std::lock_guard finished(sync->lock);
      sync->running = false;
      sync->changed.notify_all();
    }).detach();
    sync_->running = true;  // set after the code that may throw; the thread needs this lock to finish
  }
  return sync_->changed.wait_for(guard, std::chrono::duration<double>(seconds),
                                 [this] { return !sync_->running; });
}

// Never writes 4: that would permanently stop the kernel from logging these writes.
std::expected<void, daemon::SystemError> KernelMemory::dropPageCache() {
  return levers_.dropCaches.pull("1\n");
}

std::expected<void, daemon::SystemError> KernelMemory::dropSlab() {
  return levers_.dropCaches.pull("2\n");
}

std::expected<void, daemon::SystemError> KernelMemory::compact() {
  return levers_.compact.pull("1\n");
}

}  // namespace vorli::linuxhost
