#pragma once

#include "helper/HelperProtocol.h"
#include "linux/HelperChannel.h"
#include "linux/SystemBus.h"

#include <cstdint>
#include <memory>
#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// Sends the daemon's requests over the bus and brings the answers back to the channels that they came from.
/// A request has no time limit here: whoever waits for it has one. Works on the bus's thread.
class HelperEndpoint final : public SystemBus::Client {
 public:
  /// A request's place on its channel.
  struct Ticket {
    std::shared_ptr<HelperChannel> channel;
    HelperChannel::RequestId request;
  };

  explicit HelperEndpoint(SystemBus& bus) : bus_(bus) {}

  /// Ends the channel when the bus is lost.
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
  template <typename... Arguments>
  void sendForText(const char* method, const Ticket& ticket, OnceReply<std::string> reply,
                   const Arguments&... arguments);
  template <typename... Arguments>
  void sendForReply(const char* method, const Ticket& ticket, OnceReply<HelperReply> reply,
                    const Arguments&... arguments);
  /// Fails the request otherwise.
  bool isOpen(const Ticket& ticket) const;
  void failed(const Ticket& ticket, const sdbus::Error& error) const;

  SystemBus& bus_;
  std::unique_ptr<sdbus::IProxy> helper_;
  std::vector<std::weak_ptr<HelperChannel>> channels_;
};

}  // namespace vorli::linuxhost
