#include "linux/kernel/ResidentSizes.h"

#include "formats/ProcStat.h"
#include "linux/kernel/ProcPath.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

std::optional<std::uint64_t> readStatm(const posix::FileDescriptor& file) {
  std::array<char, 160> buffer;
  const ssize_t length = pread(file.get(), buffer.data(), buffer.size(), 0);
  if (length < 1) return std::nullopt;
  return formats::parseResidentPages({buffer.data(), static_cast<std::size_t>(length)});
}

}  // namespace

void ResidentSizes::beginPass() {
  std::erase_if(kept_, [](const Kept& kept) { return !kept.isUsed; });
  for (auto& kept : kept_) kept.isUsed = false;
}

std::optional<std::uint64_t> ResidentSizes::readPages(std::int32_t pid, int procFolder) {
  const auto kept = std::ranges::find(kept_, pid, &Kept::pid);
  if (kept != kept_.end()) {
    if (const auto pages = readStatm(kept->file)) {
      kept->isUsed = true;
      return pages;
    }
    kept_.erase(kept);
  }
  posix::FileDescriptor file(
      openat(procFolder, ProcPath(pid, "statm").text(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  const auto pages = file ? readStatm(file) : std::nullopt;
  if (pages && kept_.size() < mostKept) kept_.push_back({pid, std::move(file), true});
  return pages;
}

}  // namespace vorli::linuxhost
