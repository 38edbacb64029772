#pragma once

#include "base/Date.h"
#include "base/SharedText.h"
#include "base/Subscription.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace vorli::ports {

/// How an application shows itself: as a full one, as one in the tray or menu bar only, or not at all.
enum class ActivationPolicy { regular, accessory, prohibited };

/// Names a picture of an application; it is loaded only when a view draws it. Empty: the application has
/// none.
struct ApplicationIcon {
  SharedText name;
  bool operator==(const ApplicationIcon&) const = default;
};

/// One running application. Its copies share their texts.
struct RunningApplication {
  std::int32_t processIdentifier = 0;
  std::optional<SharedText> localizedName = {};
  std::optional<SharedText> bundleIdentifier = {};
  /// Path of what the user installed: the bundle's folder, or the desktop entry's file.
  std::optional<SharedText> bundleURL = {};
  ActivationPolicy activationPolicy = ActivationPolicy::regular;
  std::optional<Date> launchDate = {};
  ApplicationIcon icon = {};

  bool operator==(const RunningApplication&) const = default;
};

/// An application as it is installed, running or not.
struct InstalledApplication {
  std::optional<SharedText> bundleIdentifier = {};
  SharedText displayName;

  bool operator==(const InstalledApplication&) const = default;
};

/// What can happen to an application: it came to the front, was started, or has ended.
enum class ApplicationEvent { activated, launched, terminated };

/// The desktop's idea of which applications run. Main thread. Handlers run on the main thread from its loop,
/// never inside a call of this port.
class Workspace {
 public:
  using ApplicationHandler = std::function<void(const RunningApplication&)>;

  virtual ~Workspace() = default;

  /// All running applications, one record for each, those started first at the front; empty where the system
  /// cannot tell. An application's helper processes have no record of their own, unless the system keeps
  /// them as applications. The list stands unchanged until the main loop goes on. Read at every tick: does
  /// not block, and costs no more than handing out a list that is kept.
  virtual const std::vector<RunningApplication>& runningApplications() = 0;

  /// The one whose window has the focus; empty when none has, and where windows cannot be seen. Does not
  /// block.
  virtual std::optional<RunningApplication> frontmostApplication() = 0;

  /// False where the system shows no program the windows of the others: no activation is told there, none is
  /// frontmost, and nobody can say which application is hidden. It may change while the program runs. Does
  /// not block.
  virtual bool canSeeWindows() = 0;

  /// Owners of the windows that are on the screen now: neither minimised nor on another space; the desktop's
  /// own furniture left out. A window of an application of the list is told by the process identifier that
  /// the list has. One owner may come several times. An empty list is a screen without windows, or a look
  /// that failed; an empty optional says that windows cannot be seen. Blocks for one round trip to the
  /// display, about a millisecond.
  virtual std::optional<std::vector<std::int32_t>> onScreenWindowOwnerPIDs() = 0;

  /// Asks an application of the list to quit, as its own menu would: it may refuse, or ask the user first.
  /// Never by force. True when it was asked; false for a process that is none of the list's by now. Nothing
  /// waits for the outcome; does not block.
  virtual bool terminate(std::int32_t processIdentifier) = 0;

  /// What is installed at `path`: the bundle there. Where applications are no bundles: the one whose program
  /// this file is, or that runs it now, or the only one whose programs lie in this folder, at any depth.
  /// Empty when there is none, or no telling which; a program that many applications share is none's.
  /// Answered from what is known already, or with one short look at the disk; asked for a few paths per tick.
  virtual std::optional<InstalledApplication> applicationAt(std::string_view path) = 0;

  /// An application that ended is told with the record that it had in the list.
  [[nodiscard]] virtual Subscription subscribe(ApplicationEvent event, ApplicationHandler handler) = 0;

  /// The user went to another space.
  [[nodiscard]] virtual Subscription subscribeToSpaceChanges(std::function<void()> handler) = 0;

  /// The first of the list with this identifier; null when none runs. As long-lived as the list.
  const RunningApplication* firstWithIdentifier(std::string_view bundleIdentifier) {
    for (const auto& application : runningApplications()) {
      if (application.bundleIdentifier == bundleIdentifier) return &application;
    }
    return nullptr;
  }

  /// As above, by process.
  const RunningApplication* withProcessIdentifier(std::int32_t processIdentifier) {
    for (const auto& application : runningApplications()) {
      if (application.processIdentifier == processIdentifier) return &application;
    }
    return nullptr;
  }
};

}  // namespace vorli::ports
