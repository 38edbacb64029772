#pragma once

#include "base/Animated.h"
#include "base/HostSystem.h"
#include "base/Published.h"
#include "base/Scheduler.h"
#include "base/SubscriberList.h"
#include "base/Subscription.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "flows/OnboardingFlowState.h"
#include "flows/OnboardingTexts.h"
#include "helper/HelperManager.h"
#include "ports/Announcements.h"
#include "ports/ApplicationBundle.h"
#include "ports/FileViewer.h"
#include "ports/LinkOpener.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorli {

/// Dependencies of the first steps' views.
struct OnboardingViewNeeds {
  Scheduler& scheduler;
  HelperManager& helperManager;
  OnboardingFlowState& flowState;
  const ports::ApplicationBundle& bundle;
  ports::Announcements& announcements;
  ports::LinkOpener& links;
  ports::FileViewer& fileViewer;
  /// Address of the page that says how to install the program; empty when there is none.
  std::string installPage;
  /// Asks for the permission to show notices.
  std::function<void()> requestNotificationAuthorization;
  HostSystem system = hostSystem;
};

/// A button of the first steps.
struct OnboardingButton {
  std::string_view title;
  bool isActive = true;
  std::string_view accessibilityLabel;  // the title when empty
  std::string_view accessibilityHint;

  bool operator==(const OnboardingButton&) const = default;
};

/// The helper step: shows how the daemon is installed and approved, and follows its live status. Main thread.
class OnboardingView {
 public:
  enum class State { notInstalled, notRegistered, requiresApproval, enabled, notFound };
  /// Meaning of the picture above the title.
  enum class Mood { ready, waiting, trouble };

  /// Time allowed for the system to notice a registration.
  static constexpr double registrationSeconds = 0.4;
  static constexpr double haloSeconds = 4.2;

  explicit OnboardingView(const OnboardingViewNeeds& needs);

  /// Reads the status, starts the halo's breath and announces the state; from then on, the view follows the
  /// status.
  void appear();

  /// Calls `handler` from the main loop after the content may have changed.
  [[nodiscard]] Subscription subscribeToContent(std::function<void()> handler) {
    return contentChanged_.add(std::move(handler));
  }

  State state() const;
  Mood mood() const;
  std::string_view title() const;
  std::string_view sentence() const;
  std::span<const ExplainerRow> rows() const { return texts().rows; }
  /// Line about the helper's status; empty when there is none.
  std::string_view statusLine() const;
  std::string statusLineAccessibilityText() const { return "Status: " + std::string(statusLine()); }
  OnboardingButton primaryButton() const;
  std::optional<OnboardingButton> secondaryButton() const;

  void primaryPressed();
  void secondaryPressed();

  /// True while a registration is under way.
  Published<bool, OnboardingView> isInstalling{false};
  /// Phase of the halo's breath: from 0 to 1 and back, forever.
  PublishedAnimated<double, OnboardingView> haloBreath;

 private:
  InstallStatus status() const;
  OnboardingFlowState::Location location() const;
  const OnboardingStateTexts& texts() const;
  /// True while the user waits for a password window that nothing can open.
  bool lacksPrompt() const;
  void statusChanged();
  void announce();
  void showHowToInstall();
  void install();
  Task<> finishInstalling();

  Scheduler& scheduler_;
  HelperManager& helperManager_;
  OnboardingFlowState& flowState_;
  const ports::ApplicationBundle& bundle_;
  ports::Announcements& announcements_;
  ports::LinkOpener& links_;
  ports::FileViewer& fileViewer_;
  const std::string installPage_;
  const std::function<void()> requestNotificationAuthorization_;
  const HostSystem system_;
  const OnboardingTexts& allTexts_;
  std::string lastAnnouncedSentence_;
  SubscriberList<> contentChanged_;
  Subscription statusSubscription_;
  TaskScope tasks_;
};

}  // namespace vorli
