#pragma once

#include "contract/HelperProtocol.h"
#include "linux/bus/Library.h"
#include "linux/helper/HelperChannel.h"
#include "linux/helper/SystemBus.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// Sends requests to the daemon over the bus and returns the replies to their channels. Requests have no time
/// limit here: the caller sets one. Runs on the bus's thread.
class HelperEndpoint final : public SystemBus::Client {
 public:
  /// Identifies a request on its channel.
  struct Ticket {
    std::shared_ptr<HelperChannel> channel;
    HelperChannel::RequestId request;
  };

  explicit HelperEndpoint(SystemBus& bus) : bus_(bus) {}

  /// Closes the channel when the bus is lost.
  void serve(const std::shared_ptr<HelperChannel>& channel);

  void ping(const Ticket& ticket, OnceReply<std::string> reply);
  void version(const Ticket& ticket, OnceReply<std::string> reply);
  void purgeMemory(const Ticket& ticket, OnceReply<HelperReply> reply);
  void flushDNS(const Ticket& ticket, OnceReply<HelperReply> reply);
  void killPID(const Ticket& ticket, std::int32_t pid, std::int32_t signal, OnceReply<HelperReply> reply);
  void dumpBTM(const Ticket& ticket, OnceReply<HelperReply> reply);
  void moveLaunchAgentPlist(const Ticket& ticket, const std::string& from, const std::string& to,
                            OnceReply<HelperReply> reply);

  void connected(sdbus::IConnection& connection) override;
  void disconnected() override;

 private:
  template <typename Answered, typename... Arguments>
  void send(const char* method, const Ticket& ticket, const Answered& answered,
            const Arguments&... arguments);
  template <typename... Arguments>
  void sendForText(const char* method, const Ticket& ticket, OnceReply<std::string> reply,
                   const Arguments&... arguments);
  template <typename... Arguments>
  void sendForReply(const char* method, const Ticket& ticket, OnceReply<HelperReply> reply,
                    const Arguments&... arguments);
  /// True when the request can be sent; otherwise it is failed.
  bool isOpen(const Ticket& ticket) const;
  void failed(const Ticket& ticket, const sdbus::Error& error) const;

  SystemBus& bus_;
  std::unique_ptr<sdbus::IProxy> helper_;
  std::vector<std::weak_ptr<HelperChannel>> channels_;
};

}  // namespace vorli::linuxhost
