#pragma once

#include "base/Scheduler.h"
#include "ports/HelperService.h"

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// A registration service as a test describes it: everything is registered and allowed by default.
class HelperService final : public ports::HelperService {
 public:
  explicit HelperService(Scheduler& scheduler) : scheduler_(scheduler) {}

  int rawStatus = 1;
  bool isOtherBuild = false;
  /// The status that a read in progress will find; it becomes the current one with the answer.
  std::optional<int> statusAfterRead;
  std::optional<int> statusAfterRegister;
  std::expected<void, std::string> registerResult;
  std::expected<void, std::string> unregisterResult;
  double unregisterSeconds = 0.0;
  ports::Consent consent = ports::Consent::granted;
  /// The result of asking the user for consent, and how long that takes.
  std::expected<void, std::string> consentResult;
  double consentSeconds = 0.0;
  /// If false, questions to the system get no answer.
  bool answers = true;
  /// How long the system takes to answer a read.
  double readSeconds = 0.0;
  /// The calls in order: "register", "unregister", "open login items", "ask for consent"; followed by
  /// " (program)" if no user asked for it.
  std::vector<std::string> calls;

  /// Changes the status, as the system would, and notifies the program.
  void changeStatus(int raw) {
    rawStatus = raw;
    scheduler_.post([this] {
      if (handler_) handler_();
    });
  }

  /// Makes a registration fail that was reported as a success.
  void failRegistration(std::string text) {
    scheduler_.post([this, text = std::move(text)] {
      if (failureHandler_) failureHandler_(text);
    });
  }

  /// Makes a password necessary that nothing can ask for.
  void missPrompt() {
    scheduler_.post([this] {
      if (noPromptHandler_) noPromptHandler_();
    });
  }

  int status() override { return rawStatus; }
  bool isOtherBuildRegistered() override { return isOtherBuild; }

  void readStatus(OnceReply<int> reply) override {
    if (!answers) return;
    scheduler_.after(readSeconds, [this, reply = std::move(reply)]() mutable {
      if (statusAfterRead) rawStatus = *statusAfterRead;
      std::move(reply)(rawStatus);
    });
  }

  void setChangeHandler(std::function<void()> handler) override { handler_ = std::move(handler); }

  void setFailureHandler(std::function<void(std::string)> handler) override {
    failureHandler_ = std::move(handler);
  }

  void setNoPromptHandler(std::function<void()> handler) override { noPromptHandler_ = std::move(handler); }

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

  void askForStartupItemConsent(OnceReply<std::expected<void, std::string>> reply) override {
    calls.emplace_back("ask for consent");
    scheduler_.after(consentSeconds,
                     [this, reply = std::move(reply)]() mutable { std::move(reply)(consentResult); });
  }

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
  std::function<void()> noPromptHandler_;
};

}  // namespace vorli::fakes
