#pragma once

#include "base/Scheduler.h"
#include "ports/Workspace.h"

#include <memory>
#include <vector>

@class NSRunningApplication;

namespace vorli::machost {

/// The applications in the system's own list. All windows are visible to the program.
class Workspace final : public ports::Workspace {
 public:
  explicit Workspace(Scheduler& scheduler) : scheduler_(scheduler) {}

  const std::vector<ports::RunningApplication>& runningApplications() override;
  std::optional<ports::RunningApplication> frontmostApplication() override;
  bool seesActivations() override { return true; }
  bool seesEveryWindow() override { return true; }
  std::optional<std::vector<std::int32_t>> onScreenWindowOwnerPIDs() override;
  /// Returns `cannotBeAsked` for an application that does not accept the request.
  ports::QuitAnswer terminate(std::int32_t processIdentifier) override;
  ports::QuitAnswer answerToTerminate(std::int32_t processIdentifier) override;
  /// Always empty: a helper is inside its application's bundle, so its path identifies the application.
  std::optional<std::int32_t> applicationHelpedBy(std::int32_t processIdentifier) override;
  std::optional<ports::InstalledApplication> applicationAt(std::string_view path) override;
  Subscription subscribe(ports::ApplicationEvent event, ApplicationHandler handler) override;
  Subscription subscribeToSpaceChanges(std::function<void()> handler) override;

 private:
  ports::RunningApplication listedRecord(NSRunningApplication* application);

  Scheduler& scheduler_;
  std::vector<ports::RunningApplication> applications_;
  std::shared_ptr<bool> isCurrent_ = std::make_shared<bool>(false);  // until the main loop runs again
};

}  // namespace vorli::machost
