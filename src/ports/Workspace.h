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

/// How an application appears on the desktop: fully, in the tray or menu bar only, or not at all.
enum class ActivationPolicy { regular, accessory, prohibited };

/// Identifies an application's icon, which is loaded only when a view draws it. Empty when the application
/// has none.
struct ApplicationIcon {
  SharedText name;
  bool operator==(const ApplicationIcon&) const = default;
};

/// A running application. Copies share their texts.
struct RunningApplication {
  std::int32_t processIdentifier = 0;
  std::optional<SharedText> localizedName = {};
  /// Empty for a program that shows windows without being installed as an application.
  std::optional<SharedText> bundleIdentifier = {};
  /// Path of the installed application: the bundle's folder or the desktop entry's file.
  std::optional<SharedText> bundleURL = {};
  ActivationPolicy activationPolicy = ActivationPolicy::regular;
  std::optional<Date> launchDate = {};
  ApplicationIcon icon = {};

  bool operator==(const RunningApplication&) const = default;
};

/// An installed application, running or not.
struct InstalledApplication {
  std::optional<SharedText> bundleIdentifier = {};
  SharedText displayName;

  bool operator==(const InstalledApplication&) const = default;
};

/// Event of an application: it came to the front, was started or has ended.
enum class ApplicationEvent { activated, launched, terminated };

/// Outcome of a request to quit. `cannotBeAsked`: the application runs, but no way of asking it is free of
/// the risk of losing unsaved work; nothing was sent. `gone`: the process is not in the list any more.
enum class QuitAnswer { asked, cannotBeAsked, gone };

/// The desktop's list of running applications. Main thread. Handlers run on the main thread from its loop,
/// never inside a call of this port.
class Workspace {
 public:
  using ApplicationHandler = std::function<void(const RunningApplication&)>;

  virtual ~Workspace() = default;

  /// All running applications, one record each, in the order in which they were started; empty where the
  /// system does not know them. Helper processes have no record of their own, unless the system treats them
  /// as applications. The list does not change before the main loop runs again. Read at every tick, so it
  /// must not block or cost more than returning a stored list.
  virtual const std::vector<RunningApplication>& runningApplications() = 0;

  /// The application whose window has the focus; empty when no window has it or where windows are not visible
  /// to the program. Does not block.
  virtual std::optional<RunningApplication> frontmostApplication() = 0;

  /// False where the system does not say which application is in use: activations are not reported, and no
  /// application is frontmost. May change while the program runs. Does not block.
  virtual bool seesActivations() = 0;

  /// False where the system hides windows of other programs, so that hidden applications cannot be
  /// recognised. May change while the program runs. Does not block.
  virtual bool seesEveryWindow() = 0;

  /// Owners of the windows on the screen: neither minimised nor on another space, and without the desktop's
  /// own windows. For a listed application, this is the process identifier from the list. An owner may appear
  /// several times. Where the system does not say which of several processes owns a window, each of them is
  /// listed. The list is empty when there are no windows or reading them failed; the optional is empty when
  /// `seesEveryWindow` is false, or when the user has put all of them aside to look at the
  /// desktop. Blocks for one round trip to the display, about a millisecond.
  virtual std::optional<std::vector<std::int32_t>> onScreenWindowOwnerPIDs() = 0;

  /// Asks a listed application to quit, as its own menu would: it may refuse or ask the user first. Never
  /// uses force. Does not block or wait for the outcome.
  virtual QuitAnswer terminate(std::int32_t processIdentifier) = 0;

  /// The answer that `terminate` would give now. Sends nothing and does not block.
  virtual QuitAnswer answerToTerminate(std::int32_t processIdentifier) = 0;

  /// The process identifier of the listed application that this process works for, by the kinship of
  /// processes or by its sandbox. Empty when it is an application itself, works for none, or is gone. Reads a
  /// few small files of the kernel; called for a few processes per tick.
  virtual std::optional<std::int32_t> applicationHelpedBy(std::int32_t processIdentifier) = 0;

  /// The application at `path`: the bundle there. Where applications are not bundles, the application that
  /// this program file belongs to or that runs it now, or the only application with programs in this folder,
  /// at any depth. Empty when there is none or it is ambiguous; a program shared by many applications belongs
  /// to none of them. Answered from memory or with one short disk access; called for a few paths per tick.
  virtual std::optional<InstalledApplication> applicationAt(std::string_view path) = 0;

  /// Calls `handler` at each such event. A terminated application is reported with the record that it had in
  /// the list.
  [[nodiscard]] virtual Subscription subscribe(ApplicationEvent event, ApplicationHandler handler) = 0;

  /// Calls `handler` when the user switches to another space.
  [[nodiscard]] virtual Subscription subscribeToSpaceChanges(std::function<void()> handler) = 0;

  /// The first listed application with this identifier; null when none is running. Valid as long as the list.
  const RunningApplication* firstWithIdentifier(std::string_view bundleIdentifier) {
    for (const auto& application : runningApplications()) {
      if (application.bundleIdentifier == bundleIdentifier) return &application;
    }
    return nullptr;
  }

  /// Like the previous, by process.
  const RunningApplication* withProcessIdentifier(std::int32_t processIdentifier) {
    for (const auto& application : runningApplications()) {
      if (application.processIdentifier == processIdentifier) return &application;
    }
    return nullptr;
  }
};

}  // namespace vorli::ports
