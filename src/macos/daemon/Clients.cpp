#include "macos/daemon/Clients.h"

#include <algorithm>
#include <utility>

namespace vorli::machost {

namespace {

class ConnectedProcess final : public daemon::CallerProcess {
 public:
  explicit ConnectedProcess(std::shared_ptr<const std::atomic<bool>> isOpen) : isOpen_(std::move(isOpen)) {}

  bool isThere() override { return *isOpen_; }

 private:
  const std::shared_ptr<const std::atomic<bool>> isOpen_;
};

}  // namespace

std::optional<std::string> Clients::admit(daemon::UserId user) {
  const std::lock_guard guard(lock_);
  const auto open =
      std::ranges::count_if(clients_, [user](const auto& entry) { return entry.second.user == user; });
  if (static_cast<std::size_t>(open) >= mostPerUser) return std::nullopt;
  auto name = "connection " + std::to_string(++lastNumber_);
  clients_.emplace(name, Client{.user = user});
  return name;
}

void Clients::remove(const std::string& name) {
  const std::lock_guard guard(lock_);
  const auto client = clients_.find(name);
  if (client == clients_.end()) return;
  *client->second.isOpen = false;
  clients_.erase(client);
}

std::size_t Clients::count() const {
  const std::lock_guard guard(lock_);
  return clients_.size();
}

std::optional<Clients::Client> Clients::find(const std::string& name) const {
  const std::lock_guard guard(lock_);
  const auto client = clients_.find(name);
  return client == clients_.end() ? std::nullopt : std::optional(client->second);
}

void Clients::userOf(const std::string& caller, OnceReply<std::optional<daemon::UserId>> reply) {
  const auto client = find(caller);
  std::move(reply)(client ? std::optional(client->user) : std::nullopt);
}

void Clients::processOf(const std::string& caller, daemon::UserId user,
                        OnceReply<std::shared_ptr<daemon::CallerProcess>> reply) {
  const auto client = find(caller);
  std::shared_ptr<daemon::CallerProcess> process;
  if (client && client->user == user) process = std::make_shared<ConnectedProcess>(client->isOpen);
  std::move(reply)(std::move(process));
}

}  // namespace vorli::machost
