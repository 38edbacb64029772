#include "linux/helper/HelperTransport.h"

#include "base/Assert.h"
#include "base/UTF8.h"
#include "linux/helper/HelperChannel.h"
#include "linux/helper/HelperEndpoint.h"

#include <cerrno>
#include <functional>
#include <string>
#include <utility>

namespace vorli::linuxhost {

namespace {

class Proxy final : public HelperProtocol {
 public:
  Proxy(SystemBus& bus, std::shared_ptr<HelperEndpoint> endpoint, std::shared_ptr<HelperChannel> channel,
        HelperChannel::ErrorHandler errorHandler)
      : bus_(bus),
        endpoint_(std::move(endpoint)),
        channel_(std::move(channel)),
        errorHandler_(std::move(errorHandler)) {}

  void ping(OnceReply<std::string> reply) override { send(&HelperEndpoint::ping, std::move(reply)); }
  void version(OnceReply<std::string> reply) override { send(&HelperEndpoint::version, std::move(reply)); }
  void purgeMemory(OnceReply<HelperReply> reply) override {
    send(&HelperEndpoint::purgeMemory, std::move(reply));
  }
  void flushDNS(OnceReply<HelperReply> reply) override { send(&HelperEndpoint::flushDNS, std::move(reply)); }
  void dumpBTM(OnceReply<HelperReply> reply) override { send(&HelperEndpoint::dumpBTM, std::move(reply)); }

  void killPID(std::int32_t pid, std::int32_t signal, OnceReply<HelperReply> reply) override {
    bus_.run([endpoint = endpoint_, ticket = newTicket(), pid, signal, reply = std::move(reply)]() mutable {
      endpoint->killPID(ticket, pid, signal, std::move(reply));
    });
  }

  // A bus carries only UTF-8, and a request that it refuses would end in a time-out.
  void moveLaunchAgentPlist(std::string from, std::string to, OnceReply<HelperReply> reply) override {
    if (!isUTF8(from) || !isUTF8(to))
      return std::move(reply)({EILSEQ, "The path is not UTF-8: " + repairedUTF8(isUTF8(from) ? to : from)});
    bus_.run([endpoint = endpoint_, ticket = newTicket(), from = std::move(from), to = std::move(to),
              reply = std::move(reply)]() mutable {
      endpoint->moveLaunchAgentPlist(ticket, from, to, std::move(reply));
    });
  }

 private:
  template <typename Reply>
  void send(void (HelperEndpoint::*request)(const HelperEndpoint::Ticket&, OnceReply<Reply>),
            OnceReply<Reply> reply) {
    bus_.run([endpoint = endpoint_, request, ticket = newTicket(), reply = std::move(reply)]() mutable {
      (endpoint.get()->*request)(ticket, std::move(reply));
    });
  }

  HelperEndpoint::Ticket newTicket() { return {channel_, channel_->begin(errorHandler_)}; }

  SystemBus& bus_;
  std::shared_ptr<HelperEndpoint> endpoint_;
  std::shared_ptr<HelperChannel> channel_;
  HelperChannel::ErrorHandler errorHandler_;
};

class Connection final : public ports::HelperConnection {
 public:
  Connection(Scheduler& scheduler, SystemBus& bus, std::shared_ptr<HelperNameWatch> watch,
             std::shared_ptr<HelperEndpoint> endpoint)
      : bus_(bus),
        watch_(std::move(watch)),
        endpoint_(std::move(endpoint)),
        channel_(std::make_shared<HelperChannel>(scheduler)) {}

  void setInvalidationHandler(std::function<void()> handler) override {
    channel_->setInvalidationHandler(std::move(handler));
  }
  void setInterruptionHandler(std::function<void()> handler) override {
    channel_->setInterruptionHandler(std::move(handler));
  }

  void resume() override { askForTheWay(); }

  void invalidate() override { channel_->close("The connection was invalidated."); }

  // Looks for the daemon only until it is found. When it disappears later, requests fail.
  std::shared_ptr<HelperProtocol> remoteObjectProxy(std::function<void(std::string)> errorHandler) override {
    if (!leadsToDaemon_) {
      if (!watch_->mayLeadToDaemon()) {
        askForTheWay();
        return nullptr;
      }
      leadsToDaemon_ = true;
      bus_.run([endpoint = endpoint_, channel = channel_] { endpoint->serve(channel); });
    }
    return std::make_shared<Proxy>(bus_, endpoint_, channel_, std::move(errorHandler));
  }

 private:
  // Refreshes the state for the next call of `remoteObjectProxy`.
  void askForTheWay() {
    bus_.run([watch = watch_] { watch->refresh(nullptr); });
  }

  SystemBus& bus_;
  std::shared_ptr<HelperNameWatch> watch_;
  std::shared_ptr<HelperEndpoint> endpoint_;
  std::shared_ptr<HelperChannel> channel_;
  bool leadsToDaemon_ = false;
};

}  // namespace

HelperTransport::HelperTransport(Scheduler& scheduler, SystemBus& bus, std::shared_ptr<HelperNameWatch> watch)
    : scheduler_(scheduler),
      bus_(bus),
      watch_(std::move(watch)),
      endpoint_(std::make_shared<HelperEndpoint>(bus)) {
  bus_.attach(endpoint_);
}

std::unique_ptr<ports::HelperConnection> HelperTransport::connect(std::string_view serviceName) {
  VORLI_ASSERT(serviceName == helper::serviceName);
  return std::make_unique<Connection>(scheduler_, bus_, watch_, endpoint_);
}

}  // namespace vorli::linuxhost
