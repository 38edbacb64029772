#include "linux/daemon/KernelMemory.h"

#include "linux/daemon/LastError.h"

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
  const FileDescriptor file(::open("/proc/meminfo", O_RDONLY | O_CLOEXEC));
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

/// One run of sync(2), which may hang on a broken disk for ever and cannot be called off.
struct KernelMemory::Sync {
  std::mutex lock;
  std::condition_variable changed;
  bool running = false;
};

MemoryLever::MemoryLever(const char* path)
    : file_(::open(path, O_WRONLY | O_CLOEXEC)), error_(file_ ? 0 : errno) {}

// Always at the start of the file: the kernel takes a write behind it for done and does nothing.
std::expected<void, daemon::SystemError> MemoryLever::pull(std::string_view value) const {
  if (!file_) return std::unexpected(systemError(error_));
  if (::pwrite(file_.get(), value.data(), value.size(), 0) < 0) return lastError();
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

// One that still runs is waited for instead of a second: there is never more than one stuck thread.
bool KernelMemory::syncWithin(double seconds) {
  std::unique_lock guard(sync_->lock);
  if (!sync_->running) {
    std::thread([sync = sync_] {
      ::sync();
      const std::lock_guard finished(sync->lock);
      sync->running = false;
      sync->changed.notify_all();
    }).detach();
    sync_->running = true;  // behind what may throw; the thread ends only after this lock
  }
  return sync_->changed.wait_for(guard, std::chrono::duration<double>(seconds),
                                 [this] { return !sync_->running; });
}

// Never 4: that silences the kernel's own line about each of these writes for good.
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
