#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace vorli::linuxhost {

/// The processes that are connected to the compositor's socket. Such a process can show windows, but need not
/// have any. Processes that the compositor starts itself are not found, because they inherit their
/// connection. Main thread.
class CompositorClients {
 public:
  /// `socket` is the path at which the compositor listens.
  explicit CompositorClients(std::string socket) : socket_(std::move(socket)) {}

  /// Clients whose descriptors this program may read, without itself; empty when the kernel does not list its
  /// sockets. After a new connection, walks over the descriptors of all processes, which takes some
  /// milliseconds; otherwise as fast as `socketsConnectedTo`.
  std::optional<std::set<std::int32_t>> look();

  /// Whether the process is a client now, regardless of earlier calls of `look`; empty when it is unknown.
  std::optional<bool> isClient(std::int32_t pid) const;

 private:
  void findOwners(std::set<std::uint32_t> inodes);

  const std::string socket_;
  std::map<std::uint32_t, std::int32_t> owners_;  // by inode; 0 for an owner that may not be seen
};

}  // namespace vorli::linuxhost
