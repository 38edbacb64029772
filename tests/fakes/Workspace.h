#pragma once

#include "base/SubscriberList.h"
#include "ports/Workspace.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace vorli::fakes {

/// A desktop with the installed and running applications that a test adds.
class Workspace final : public ports::Workspace {
 public:
  const std::vector<ports::RunningApplication>& runningApplications() override {
    ++listings;
    return applications;
  }

  std::optional<ports::RunningApplication> frontmostApplication() override { return frontmost; }
  bool seesActivations() override { return tellsActivations; }
  bool seesEveryWindow() override { return windowOwners.has_value(); }
  std::optional<std::vector<std::int32_t>> onScreenWindowOwnerPIDs() override {
    ++windowLooks;
    return windowOwners;
  }

  ports::QuitAnswer terminate(std::int32_t processIdentifier) override {
    terminated.push_back(processIdentifier);
    return answerToTerminate(processIdentifier);
  }
  ports::QuitAnswer answerToTerminate(std::int32_t processIdentifier) override {
    if (!withProcessIdentifier(processIdentifier)) return ports::QuitAnswer::gone;
    const bool refuses = std::ranges::find(refusing, processIdentifier) != refusing.end();
    return refuses ? ports::QuitAnswer::cannotBeAsked : ports::QuitAnswer::asked;
  }

  std::optional<std::int32_t> applicationHelpedBy(std::int32_t processIdentifier) override {
    const auto found = helped.find(processIdentifier);
    if (found == helped.end()) return std::nullopt;
    return found->second;
  }

  std::optional<ports::InstalledApplication> applicationAt(std::string_view path) override {
    looksAtPaths.emplace_back(path);
    const auto found = installed.find(path);
    if (found == installed.end()) return std::nullopt;
    return found->second;
  }

  Subscription subscribe(ports::ApplicationEvent event, ApplicationHandler handler) override {
    return events_[event].add(std::move(handler));
  }
  Subscription subscribeToSpaceChanges(std::function<void()> handler) override {
    return spaceChanges_.add(std::move(handler));
  }

  /// Adds a regular application, which was started last.
  ports::RunningApplication& add(std::int32_t pid, std::optional<SharedText> name,
                                 std::optional<SharedText> bundleIdentifier = std::nullopt) {
    applications.push_back({.processIdentifier = pid,
                            .localizedName = std::move(name),
                            .bundleIdentifier = std::move(bundleIdentifier)});
    return applications.back();
  }

  void remove(std::int32_t pid) {
    std::erase_if(applications,
                  [pid](const auto& application) { return application.processIdentifier == pid; });
  }

  /// Notifies the subscribers without changing the lists.
  void tell(ports::ApplicationEvent event, const ports::RunningApplication& application) {
    events_[event].deliver(application);
  }
  void tellSpaceChange() { spaceChanges_.deliver(); }
  bool hasSubscribers(ports::ApplicationEvent event) const {
    const auto found = events_.find(event);
    return found != events_.end() && !found->second.empty();
  }

  std::vector<ports::RunningApplication> applications;
  std::optional<ports::RunningApplication> frontmost;
  /// If false, the system does not say which application is in use.
  bool tellsActivations = true;
  /// If empty, windows cannot be seen.
  std::optional<std::vector<std::int32_t>> windowOwners = std::vector<std::int32_t>();
  /// Processes that cannot be asked to quit.
  std::vector<std::int32_t> refusing;
  /// Processes that were asked to quit, in order.
  std::vector<std::int32_t> terminated;
  std::map<std::string, ports::InstalledApplication, std::less<>> installed;
  /// The application that each helper process works for.
  std::map<std::int32_t, std::int32_t> helped;
  int listings = 0;
  int windowLooks = 0;
  std::vector<std::string> looksAtPaths;

 private:
  std::map<ports::ApplicationEvent, SubscriberList<ports::RunningApplication>> events_;
  SubscriberList<> spaceChanges_;
};

}  // namespace vorli::fakes
