#pragma once

#include "base/Scheduler.h"
#include "daemon/Lifecycle.h"
#include "macos/daemon/Clients.h"
#include "macos/daemon/HelperObject.h"
#include "macos/daemon/MainQueueScheduler.h"

#import <Foundation/Foundation.h>
#include <optional>
#include <string>

@class VorliListenerDelegate;

namespace vorli::machost {

/// Accepts connections to the daemon's Mach service. launchd owns the service's queue: a message that this
/// process leaves in it starts the next process.
class HelperListener final : public daemon::Lifecycle::Link {
 public:
  /// `requirement` is the code-signing requirement of clients; XPC drops the messages of all others. Empty:
  /// every program may connect. `sink` must outlive the process's connections.
  HelperListener(MainQueueScheduler& scheduler, Clients& clients, const CallSink& sink,
                 const std::optional<std::string>& requirement);

  /// Starts to accept connections.
  void resume();

  /// Number of open connections, which keep the daemon alive: the application would take the end of one for a
  /// failure. 0 once the daemon exits for another reason.
  std::size_t connections() const { return isLeaving_ ? 0 : clients_.count(); }

  /// Accepts no more connections; the next process receives them.
  void releaseName() override;
  /// Answers after the calls that XPC has already delivered. Later ones are interrupted, as their clients see
  /// it.
  void barrier(OnceReply<bool> reply) override;
  void stop() override { scheduler_.stop(); }

 private:
  MainQueueScheduler& scheduler_;
  Clients& clients_;
  VorliListenerDelegate* const delegate_;
  NSXPCListener* const listener_;
  bool isLeaving_ = false;
};

}  // namespace vorli::machost
