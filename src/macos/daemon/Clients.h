#pragma once

#include "daemon/Callers.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace vorli::machost {

/// The open connections, each with a unique name, which is never reused. The kernel reports the user of a
/// connection with the connection itself, so nothing is looked up by a process number.
class Clients final : public daemon::Callers {
 public:
  /// More connections of one user are refused: each costs the daemon memory, and the application needs one.
  static constexpr std::size_t mostPerUser = 16;

  /// Adds a connection and returns its name; empty when the user has too many. Any thread.
  std::optional<std::string> admit(daemon::UserId user);
  /// Removes a connection that has ended. Any thread.
  void remove(const std::string& name);
  /// Number of open connections. Any thread.
  std::size_t count() const;

  void userOf(const std::string& caller, OnceReply<std::optional<daemon::UserId>> reply) override;
  void processOf(const std::string& caller, daemon::UserId user,
                 OnceReply<std::shared_ptr<daemon::CallerProcess>> reply) override;

 private:
  struct Client {
    daemon::UserId user;
    /// A connection ends with its process, and with a change of the program that the process runs.
    std::shared_ptr<std::atomic<bool>> isOpen = std::make_shared<std::atomic<bool>>(true);
  };

  std::optional<Client> find(const std::string& name) const;

  mutable std::mutex lock_;
  std::uint64_t lastNumber_ = 0;
  std::map<std::string, Client> clients_;
};

}  // namespace vorli::machost
