#pragma once

#include "base/Scheduler.h"
#include "ports/HelperTransport.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// A daemon as a test scripts it, with the connections to it. Healthy by default.
class HelperTransport final : public ports::HelperTransport {
 public:
  /// Silent: the reply waits in `held`, and the test answers late or never. Fails: the proxy's error handler
  /// is called.
  enum class Conduct { answers, silent, fails };

  template <typename Reply>
  struct Method {
    Reply answer{};
    Conduct conduct = Conduct::answers;
    double delaySeconds = 0.0;
    int requests = 0;
    std::vector<OnceReply<Reply>> held = {};
  };

  explicit HelperTransport(Scheduler& scheduler) : scheduler_(scheduler) {}

  Method<std::string> ping{.answer = "alive"};
  Method<std::string> version{.answer = "1.2.3"};
  Method<HelperReply> purgeMemory{.answer = {0, "purged"}};
  Method<HelperReply> flushDNS{.answer = {0, "flushed"}};
  Method<HelperReply> killPID{};
  Method<HelperReply> dumpBTM{.answer = {5, "Not supported on this system"}};
  Method<HelperReply> moveLaunchAgentPlist{};

  /// If false, connections have no proxy.
  bool leadsToDaemon = true;
  /// Runs just before a request is answered, and may still change the answer.
  std::function<void(const std::string&)> whenAnswered;
  std::string errorText = "Couldn't communicate with a helper application.";
  /// Requests in order, as in "killPID 42 19".
  std::vector<std::string> requests;
  std::vector<std::string> servicesConnected;

  void setConduct(Conduct conduct) {
    for (auto* method : {&ping, &version}) method->conduct = conduct;
    for (auto* method : {&purgeMemory, &flushDNS, &killPID, &dumpBTM, &moveLaunchAgentPlist})
      method->conduct = conduct;
  }

  int connectionsOpened() const { return static_cast<int>(states_.size()); }
  int connectionsAlive() const {
    int alive = 0;
    for (const auto& state : states_) alive += state->resumed && !state->invalidated;
    return alive;
  }
  int invalidations() const { return invalidations_; }

  /// Lets the daemon die during a call on connection `index`; the call itself gets no answer.
  void interrupt(int index) { states_.at(index)->interruptionHandler(); }
  /// Breaks connection `index` for good.
  void lose(int index) { end(*states_.at(index)); }

  std::unique_ptr<ports::HelperConnection> connect(std::string_view serviceName) override {
    servicesConnected.emplace_back(serviceName);
    states_.push_back(std::make_shared<State>());
    return std::make_unique<Connection>(*this, states_.back());
  }

 private:
  struct Pending {
    std::function<void(std::string)> errorHandler;
    bool settled = false;
  };
  struct State {
    std::function<void()> invalidationHandler;
    std::function<void()> interruptionHandler;
    bool resumed = false;
    bool invalidated = false;
    std::vector<std::shared_ptr<Pending>> pending;
  };

  class Proxy final : public HelperProtocol {
   public:
    Proxy(HelperTransport& daemon, std::shared_ptr<State> state, std::function<void(std::string)> onError)
        : daemon_(daemon), state_(std::move(state)), onError_(std::move(onError)) {}

    void ping(OnceReply<std::string> reply) override { serve("ping", daemon_.ping, std::move(reply)); }
    void version(OnceReply<std::string> reply) override {
      serve("version", daemon_.version, std::move(reply));
    }
    void purgeMemory(OnceReply<HelperReply> reply) override {
      serve("purgeMemory", daemon_.purgeMemory, std::move(reply));
    }
    void flushDNS(OnceReply<HelperReply> reply) override {
      serve("flushDNS", daemon_.flushDNS, std::move(reply));
    }
    void killPID(std::int32_t pid, std::int32_t signal, OnceReply<HelperReply> reply) override {
      serve("killPID " + std::to_string(pid) + " " + std::to_string(signal), daemon_.killPID,
            std::move(reply));
    }
    void dumpBTM(OnceReply<HelperReply> reply) override {
      serve("dumpBTM", daemon_.dumpBTM, std::move(reply));
    }
    void moveLaunchAgentPlist(std::string from, std::string to, OnceReply<HelperReply> reply) override {
      serve("moveLaunchAgentPlist " + from + " " + to, daemon_.moveLaunchAgentPlist, std::move(reply));
    }

   private:
    template <typename Reply>
    void serve(std::string request, Method<Reply>& method, OnceReply<Reply> reply) {
      daemon_.requests.push_back(request);
      ++method.requests;
      auto pending = std::make_shared<Pending>(Pending{onError_});
      state_->pending.push_back(pending);
      OnceReply<Reply> guarded([pending, reply = std::move(reply)](Reply answer) mutable {
        if (!std::exchange(pending->settled, true)) std::move(reply)(std::move(answer));
      });

      if (state_->invalidated || method.conduct == Conduct::fails) {
        daemon_.fail(pending, method.delaySeconds);
      } else if (method.conduct == Conduct::silent) {
        method.held.push_back(std::move(guarded));
      } else {
        daemon_.scheduler_.after(method.delaySeconds,
                                 [&daemon = daemon_, &method, request, guarded = std::move(guarded),
                                  answer = method.answer]() mutable {
                                   if (daemon.whenAnswered) {
                                     daemon.whenAnswered(request);
                                     answer = method.answer;
                                   }
                                   std::move(guarded)(std::move(answer));
                                 });
      }
    }

    HelperTransport& daemon_;
    std::shared_ptr<State> state_;
    std::function<void(std::string)> onError_;
  };

  class Connection final : public ports::HelperConnection {
   public:
    Connection(HelperTransport& daemon, std::shared_ptr<State> state)
        : daemon_(daemon), state_(std::move(state)) {}

    void setInvalidationHandler(std::function<void()> handler) override {
      state_->invalidationHandler = std::move(handler);
    }
    void setInterruptionHandler(std::function<void()> handler) override {
      state_->interruptionHandler = std::move(handler);
    }
    void resume() override { state_->resumed = true; }
    void invalidate() override {
      ++daemon_.invalidations_;
      daemon_.end(*state_);
    }
    std::shared_ptr<HelperProtocol> remoteObjectProxy(
        std::function<void(std::string)> errorHandler) override {
      if (!daemon_.leadsToDaemon) return nullptr;
      return std::make_shared<Proxy>(daemon_, state_, std::move(errorHandler));
    }

   private:
    HelperTransport& daemon_;
    std::shared_ptr<State> state_;
  };

  void fail(const std::shared_ptr<Pending>& pending, double delaySeconds) {
    scheduler_.after(delaySeconds, [this, pending] {
      if (!std::exchange(pending->settled, true)) pending->errorHandler(errorText);
    });
  }

  void end(State& state) {
    if (std::exchange(state.invalidated, true)) return;
    for (const auto& pending : std::exchange(state.pending, {})) fail(pending, 0.0);
    scheduler_.after(0.0, [handler = state.invalidationHandler] {
      if (handler) handler();
    });
  }

  Scheduler& scheduler_;
  std::vector<std::shared_ptr<State>> states_;
  int invalidations_ = 0;
};

}  // namespace vorli::fakes
