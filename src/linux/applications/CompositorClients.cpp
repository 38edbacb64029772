#include "linux/applications/CompositorClients.h"

#include "linux/applications/LocalSockets.h"

#include <algorithm>
#include <charconv>
#include <dirent.h>
#include <string_view>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

std::set<std::int32_t> allProcesses() {
  std::set<std::int32_t> pids;
  DIR* processes = opendir("/proc");
  if (!processes) return pids;
  while (const dirent* each = readdir(processes)) {
    const std::string_view name = each->d_name;
    std::int32_t pid = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    if (error == std::errc() && end == name.data() + name.size()) pids.insert(pid);
  }
  closedir(processes);
  return pids;
}

}  // namespace

std::optional<std::set<std::int32_t>> CompositorClients::look() {
  auto connected = socketsConnectedTo(socket_);
  if (!connected) return std::nullopt;
  std::erase_if(owners_, [&](const auto& owner) { return !connected->contains(owner.first); });
  std::erase_if(*connected, [this](std::uint32_t inode) { return owners_.contains(inode); });
  if (!connected->empty()) findOwners(std::move(*connected));
  std::set<std::int32_t> clients;
  for (const auto& [inode, pid] : owners_) {
    if (pid != 0 && pid != getpid()) clients.insert(pid);
  }
  return clients;
}

void CompositorClients::findOwners(std::set<std::uint32_t> inodes) {
  for (const auto inode : inodes) owners_[inode] = 0;
  for (const auto pid : allProcesses()) {
    if (inodes.empty()) return;
    const auto held = socketsOf(pid);
    if (!held) continue;
    for (const auto inode : *held) {
      if (inodes.erase(inode) > 0) owners_[inode] = pid;
    }
  }
}

std::optional<bool> CompositorClients::isClient(std::int32_t pid) const {
  const auto held = socketsOf(pid);  // read first, so that the other list includes all of them
  const auto connected = held ? socketsConnectedTo(socket_) : std::nullopt;
  if (!connected) return std::nullopt;
  return std::ranges::any_of(*held, [&](std::uint32_t inode) { return connected->contains(inode); });
}

}  // namespace vorli::linuxhost
