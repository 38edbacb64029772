#include "linux/applications/ProgramPaths.h"

#include "base/UTF8.h"
#include "linux/kernel/ProcPath.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <unistd.h>

namespace vorli::linuxhost {

ProgramIdentity::ProgramIdentity(std::int32_t pid, std::uint64_t startTicks, std::string_view name)
    : pid(pid), startTicks(startTicks) {
  std::memcpy(this->name.data(), name.data(), std::min(name.size(), sizeof this->name));
}

void ProgramPaths::keepOnly(std::span<const std::int32_t> pids) {
  auto pid = pids.begin();
  std::erase_if(known_, [&](const Known& known) {
    while (pid != pids.end() && *pid < known.identity.pid) ++pid;
    return pid == pids.end() || *pid != known.identity.pid;
  });
  cursor_ = 0;
}

const std::optional<SharedText>& ProgramPaths::find(const ProgramIdentity& identity, int procFolder) {
  const auto known = locate(identity.pid);
  cursor_ = static_cast<std::size_t>(known - known_.begin()) + 1;
  if (known == known_.end() || known->identity.pid != identity.pid) {
    return known_.insert(known, {identity, readPath(identity.pid, procFolder)})->path;
  }
  if (known->identity != identity) *known = {identity, readPath(identity.pid, procFolder)};
  return known->path;
}

// The first entry that is not below `pid`. A pass asks in ascending order, so it is nearly always the next.
std::vector<ProgramPaths::Known>::iterator ProgramPaths::locate(std::int32_t pid) {
  if (cursor_ < known_.size() && known_[cursor_].identity.pid == pid) {
    return known_.begin() + static_cast<std::ptrdiff_t>(cursor_);
  }
  return std::ranges::lower_bound(known_, pid, {}, [](const Known& known) { return known.identity.pid; });
}

std::optional<SharedText> ProgramPaths::readPath(std::int32_t pid, int procFolder) const {
  constexpr std::string_view deletedMark = " (deleted)";
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlinkat(procFolder, ProcPath(pid, "exe").text(), target.data(), target.size());
  if (length < 1) return std::nullopt;
  std::string path(target.data(), static_cast<std::size_t>(length));
  // The kernel marks a program whose file was replaced, for example by an upgrade. The mark may also be part
  // of a name: then a file with the marked name exists.
  if (path.ends_with(deletedMark) && access((root_ + path).c_str(), F_OK) != 0) {
    path.resize(path.size() - deletedMark.size());
  }
  return SharedText(repairedUTF8(path));
}

}  // namespace vorli::linuxhost
