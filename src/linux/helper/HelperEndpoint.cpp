#include "linux/helper/HelperEndpoint.h"

#include "contract/HelperMethods.h"
#include "linux/helper/BusCalls.h"

#include <cstdint>
#include <helper_contract/HelperProxy.h>
#include <utility>

namespace vorli::linuxhost {

namespace {

constexpr const char* contract = com::kv::vorli::helper_proxy::INTERFACE_NAME;
constexpr const char* noReply = "org.freedesktop.DBus.Error.NoReply";
constexpr const char* unreachable = "The system bus cannot be reached.";
constexpr const char* invalidated = "The connection was invalidated.";

// Unlimited, because the caller has its own timer: a second one would report a failure where there is none.
constexpr std::uint64_t requestLimit = noLimit;

// The library copies callbacks, but a OnceReply cannot be copied.
template <typename T>
auto sharedReply(OnceReply<T> reply) {
  return std::make_shared<OnceReply<T>>(std::move(reply));
}

}  // namespace

void HelperEndpoint::connected(sdbus::IConnection& connection) {
  helper_ = bus::proxy(connection, std::string(helper::serviceName), helperPath);
}

void HelperEndpoint::disconnected() {
  helper_.reset();
  for (const auto& weak : std::exchange(channels_, {})) {
    if (const auto channel = weak.lock()) channel->close(unreachable);
  }
}

void HelperEndpoint::serve(const std::shared_ptr<HelperChannel>& channel) {
  std::erase_if(channels_, [](const auto& weak) { return weak.expired(); });
  if (helper_) {
    channels_.push_back(channel);
  } else {
    channel->close(unreachable);
  }
}

void HelperEndpoint::ping(const Ticket& ticket, OnceReply<std::string> reply) {
  sendForText(helper::method::ping, ticket, std::move(reply));
}

void HelperEndpoint::version(const Ticket& ticket, OnceReply<std::string> reply) {
  sendForText(helper::method::version, ticket, std::move(reply));
}

void HelperEndpoint::purgeMemory(const Ticket& ticket, OnceReply<HelperReply> reply) {
  sendForReply(helper::method::purgeMemory, ticket, std::move(reply));
}

void HelperEndpoint::flushDNS(const Ticket& ticket, OnceReply<HelperReply> reply) {
  sendForReply(helper::method::flushDNS, ticket, std::move(reply));
}

void HelperEndpoint::killPID(const Ticket& ticket, std::int32_t pid, std::int32_t signal,
                             OnceReply<HelperReply> reply) {
  sendForReply(helper::method::killPID, ticket, std::move(reply), pid, signal);
}

void HelperEndpoint::dumpBTM(const Ticket& ticket, OnceReply<HelperReply> reply) {
  sendForReply(helper::method::dumpBTM, ticket, std::move(reply));
}

void HelperEndpoint::moveLaunchAgentPlist(const Ticket& ticket, const std::string& from,
                                          const std::string& to, OnceReply<HelperReply> reply) {
  sendForReply(helper::method::moveLaunchAgentPlist, ticket, std::move(reply), from, to);
}

template <typename Answered, typename... Arguments>
void HelperEndpoint::send(const char* method, const Ticket& ticket, const Answered& answered,
                          const Arguments&... arguments) {
  try {
    helper_->callMethodAsync(method)
        .onInterface(contract)
        .withTimeout(requestLimit)
        .withArguments(arguments...)
        .uponReplyInvoke(answered);
  } catch (const sdbus::Error& error) {
    failed(ticket, error);
  }
}

template <typename... Arguments>
void HelperEndpoint::sendForText(const char* method, const Ticket& ticket, OnceReply<std::string> reply,
                                 const Arguments&... arguments) {
  if (!isOpen(ticket)) return;
  const auto answered = [this, ticket, shared = sharedReply(std::move(reply))](bus::Failure error,
                                                                               const std::string& text) {
    if (error) return failed(ticket, *error);
    if (ticket.channel->finish(ticket.request)) std::move (*shared)(text);
  };
  send(method, ticket, answered, arguments...);
}

template <typename... Arguments>
void HelperEndpoint::sendForReply(const char* method, const Ticket& ticket, OnceReply<HelperReply> reply,
                                  const Arguments&... arguments) {
  if (!isOpen(ticket)) return;
  const auto answered = [this, ticket, shared = sharedReply(std::move(reply))](
                            bus::Failure error, std::int32_t exitCode, const std::string& output) {
    if (error) return failed(ticket, *error);
    if (ticket.channel->finish(ticket.request)) std::move (*shared)({exitCode, output});
  };
  send(method, ticket, answered, arguments...);
}

bool HelperEndpoint::isOpen(const Ticket& ticket) const {
  if (helper_ && !ticket.channel->isClosed()) return true;
  ticket.channel->fail(ticket.request, helper_ ? invalidated : unreachable,
                       HelperChannel::Cause::notDelivered);
  return false;
}

// A missing reply means that the daemon died during the call, unless the bus itself was lost. A change of the
// name's owner does not mean that: an idle daemon releases the name first and then answers its pending
// requests.
void HelperEndpoint::failed(const Ticket& ticket, const sdbus::Error& error) const {
  const bool daemonDied = error.getName() == noReply && !bus_.hasHungUp();
  ticket.channel->fail(ticket.request, error.getMessage().empty() ? error.getName() : error.getMessage(),
                       daemonDied ? HelperChannel::Cause::daemonDied : HelperChannel::Cause::notDelivered);
}

}  // namespace vorli::linuxhost
