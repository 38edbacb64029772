#include "linux/applications/LocalSockets.h"

#include "posix/FileDescriptor.h"

#include <array>
#include <charconv>
#include <dirent.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/sock_diag.h>
#include <linux/unix_diag.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

constexpr unsigned connectedState = 1;  // TCP_ESTABLISHED, which local sockets use as well

using Inodes = std::set<std::uint32_t>;

bool askForSockets(int netlink) {
  struct {
    nlmsghdr header;
    unix_diag_req request;
  } message{};
  message.header.nlmsg_len = sizeof message;
  message.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
  message.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  message.request.sdiag_family = AF_UNIX;
  message.request.udiag_states = 1U << connectedState;
  message.request.udiag_show = UDIAG_SHOW_NAME | UDIAG_SHOW_PEER;
  return send(netlink, &message, sizeof message, 0) == static_cast<ssize_t>(sizeof message);
}

// An accepted socket has the name of the listening socket; its peer is the socket of the client.
void addPeerIfNamed(const nlmsghdr* message, std::string_view path, Inodes& peers) {
  const auto* socket = static_cast<const unix_diag_msg*>(NLMSG_DATA(message));
  auto left = static_cast<int>(message->nlmsg_len - NLMSG_LENGTH(sizeof *socket));
  std::string_view name;
  std::uint32_t peer = 0;
  for (const auto* part = reinterpret_cast<const rtattr*>(socket + 1); RTA_OK(part, left);
       part = RTA_NEXT(part, left)) {
    if (part->rta_type == UNIX_DIAG_NAME) {
      name = {static_cast<const char*>(RTA_DATA(part)), RTA_PAYLOAD(part)};
    } else if (part->rta_type == UNIX_DIAG_PEER && RTA_PAYLOAD(part) == sizeof peer) {
      peer = *static_cast<const std::uint32_t*>(RTA_DATA(part));
    }
  }
  if (name.substr(0, name.find('\0')) == path && peer != 0) peers.insert(peer);
}

// The kernel provides the next part of its list when the previous one has been read, so no read has to wait.
std::optional<Inodes> readPeers(int netlink, std::string_view path) {
  Inodes peers;
  alignas(nlmsghdr) std::array<char, 32768> part;
  for (;;) {
    auto left = static_cast<int>(recv(netlink, part.data(), part.size(), MSG_DONTWAIT));
    if (left <= 0) return std::nullopt;
    for (const auto* message = reinterpret_cast<const nlmsghdr*>(part.data()); NLMSG_OK(message, left);
         message = NLMSG_NEXT(message, left)) {
      if (message->nlmsg_type == NLMSG_DONE) return peers;
      const bool isInterrupted = (message->nlmsg_flags & NLM_F_DUMP_INTR) != 0;
      if (message->nlmsg_type == NLMSG_ERROR || isInterrupted) return std::nullopt;
      addPeerIfNamed(message, path, peers);
    }
  }
}

// Parses the inode in the target of a link such as "socket:[12345]"; 0 for other files.
std::uint32_t inodeOfSocket(std::string_view target) {
  constexpr std::string_view prefix = "socket:[";
  std::uint32_t inode = 0;
  if (target.starts_with(prefix)) {
    std::from_chars(target.data() + prefix.size(), target.data() + target.size(), inode);
  }
  return inode;
}

}  // namespace

std::optional<std::set<std::uint32_t>> socketsConnectedTo(std::string_view path) {
  const posix::FileDescriptor netlink(socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
  if (!netlink || !askForSockets(netlink.get())) return std::nullopt;
  return readPeers(netlink.get(), path);
}

std::optional<std::set<std::uint32_t>> socketsOf(std::int32_t pid) {
  DIR* descriptors = opendir(("/proc/" + std::to_string(pid) + "/fd").c_str());
  if (!descriptors) return std::nullopt;
  Inodes inodes;
  std::array<char, 64> target;
  while (const dirent* each = readdir(descriptors)) {
    const auto length = readlinkat(dirfd(descriptors), each->d_name, target.data(), target.size());
    if (length <= 0) continue;
    const auto inode = inodeOfSocket({target.data(), static_cast<std::size_t>(length)});
    if (inode != 0) inodes.insert(inode);
  }
  closedir(descriptors);
  return inodes;
}

}  // namespace vorli::linuxhost
