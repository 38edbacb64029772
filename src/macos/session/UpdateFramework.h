#pragma once

#include "base/Scheduler.h"
#include "ports/UpdateFramework.h"

namespace vorli::machost {

/// The update framework Sparkle, if the bundle contains it. It is loaded by its name, so that the program
/// builds and runs without it.
class UpdateFramework final : public ports::UpdateFramework {
 public:
  explicit UpdateFramework(Scheduler& scheduler) : scheduler_(scheduler) {}

  /// Replies with the public key for updates, if the bundle also contains the framework.
  void findSource(OnceReply<std::optional<std::string>> reply) override;
  std::unique_ptr<ports::Updater> startUpdater(ports::UpdaterDelegate& delegate) override;

 private:
  Scheduler& scheduler_;
};

}  // namespace vorli::machost
