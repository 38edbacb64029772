#pragma once

#include "ports/UpdateFramework.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// A framework whose source and checks a test decides.
class UpdateFramework final : public ports::UpdateFramework {
 public:
  /// Answers at once. Otherwise a test calls `answer`.
  bool answersAtOnce = true;
  std::optional<std::string> source = "a key";
  bool canCheck = true;
  /// Calls of the updater, in order.
  std::vector<std::string> calls;
  ports::UpdaterDelegate* delegate = nullptr;
  bool hasUpdater = false;

  void answer() { std::move(reply_)(source); }

  void findSource(OnceReply<std::optional<std::string>> reply) override {
    if (answersAtOnce) return std::move(reply)(source);
    reply_ = std::move(reply);
  }

  std::unique_ptr<ports::Updater> startUpdater(ports::UpdaterDelegate& given) override {
    calls.emplace_back("start");
    delegate = &given;
    return std::make_unique<Updater>(*this);
  }

 private:
  class Updater final : public ports::Updater {
   public:
    explicit Updater(UpdateFramework& owner) : owner_(owner) { owner_.hasUpdater = true; }
    ~Updater() override { owner_.hasUpdater = false; }

    void setAutomaticallyChecksForUpdates(bool checks) override {
      owner_.calls.emplace_back(checks ? "automatic checks on" : "automatic checks off");
    }
    void setUpdateCheckInterval(double seconds) override {
      owner_.calls.push_back("every " + std::to_string(static_cast<int>(seconds)) + " s");
    }
    bool canCheckForUpdates() const override { return owner_.canCheck; }
    void checkForUpdates() override { owner_.calls.emplace_back("check for the user"); }
    void checkForUpdatesInBackground() override { owner_.calls.emplace_back("check in the background"); }

   private:
    UpdateFramework& owner_;
  };

  OnceReply<std::optional<std::string>> reply_;
};

}  // namespace vorli::fakes
