#pragma once

#include "base/Scheduler.h"
#include "ports/HelperService.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// A registration service as a test describes it: everything is registered and allowed until told otherwise.
class HelperService final : public ports::HelperService {
 public:
  explicit HelperService(Scheduler& scheduler) : scheduler_(scheduler) {}

  int rawStatus = 1;
  /// What a read in progress will find; taken over when it is answered.
  std::optional<int> statusAfterRead;
  std::optional<int> statusAfterRegister;
  std::expected<void, std::string> registerResult;
  std::expected<void, std::string> unregisterResult;
  double unregisterSeconds = 0.0;
  ports::Consent consent = ports::Consent::granted;
  /// False: questions to the system stay without an answer.
  bool answers = true;
  /// What was done, in order: "register", "unregister", "open login items"; with " (program)" behind it when
  /// no user asked.
  std::vector<std::string> calls;

  /// The system changes the status and tells of it.
  void changeStatus(int raw) {
    rawStatus = raw;
    scheduler_.post([this] {
      if (handler_) handler_();
    });
  }

  /// A registration that was told as a success fails later.
  void failRegistration(std::string text) {
    scheduler_.post([this, text = std::move(text)] {
      if (failureHandler_) failureHandler_(text);
    });
  }

  int status() override { return rawStatus; }

  void readStatus(OnceReply<int> reply) override {
    if (!answers) return;
    scheduler_.post([this, reply = std::move(reply)]() mutable {
      if (statusAfterRead) rawStatus = *statusAfterRead;
      std::move(reply)(rawStatus);
    });
  }

  void setChangeHandler(std::function<void()> handler) override { handler_ = std::move(handler); }

  void setFailureHandler(std::function<void(std::string)> handler) override {
    failureHandler_ = std::move(handler);
  }

  std::expected<void, std::string> registerDaemon(ports::AskedBy asker) override {
    note("register", asker);
    if (statusAfterRegister) rawStatus = *statusAfterRegister;
    return registerResult;
  }

  void unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) override {
    calls.emplace_back("unregister");
    scheduler_.after(unregisterSeconds,
                     [this, reply = std::move(reply)]() mutable { std::move(reply)(unregisterResult); });
  }

  void openSystemSettingsLoginItems(ports::AskedBy asker) override { note("open login items", asker); }

  void startupItemConsent(OnceReply<ports::Consent> reply) override {
    if (!answers) return;
    scheduler_.post([this, reply = std::move(reply)]() mutable { std::move(reply)(consent); });
  }

 private:
  void note(std::string call, ports::AskedBy asker) {
    if (asker == ports::AskedBy::program) call += " (program)";
    calls.push_back(std::move(call));
  }

  Scheduler& scheduler_;
  std::function<void()> handler_;
  std::function<void(std::string)> failureHandler_;
};

}  // namespace vorli::fakes
