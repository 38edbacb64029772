#pragma once

#include "ambient/AuroraField.h"
#include "ambient/DottedReassuranceRing.h"
#include "ambient/Movement.h"
#include "app/Notifications.h"
#include "base/Animated.h"
#include "base/Colour.h"
#include "base/Observable.h"
#include "base/SubscriberList.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "insights/CulpritFormatter.h"
#include "insights/CulpritSentence.h"
#include "polish/PolishFlow.h"
#include "polish/PolishState.h"
#include "ports/KeyValueStore.h"
#include "ports/MotionPreference.h"
#include "sampling/RingState.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// What the popover's view works with.
struct PopoverServices {
  PolishServices polish;
  ports::KeyValueStore& defaults;
  const CulpritFormatter& culpritFormatter;
  ports::MotionPreference& motion;
};

/// How often the popover's picture changes at a moment: not at all, by the slow breath of the halo and the
/// leaving calm only, or all the time.
enum class PopoverMotion { none, breath, full };

/// The content of the popover: what it shows and says, and what its controls do. It is made once and survives
/// every closing, and works out nothing while the popover is shut. Times are the scheduler's. Main thread.
class PopoverView : public PolishState {
 public:
  enum class PresentationPhase { visible, folded };

  explicit PopoverView(const PopoverServices& services);

  // State

  Observable<bool> hovered{false};  // the pointer is over the ring; its painter sets it
  /// The application whose quit is being confirmed.
  const Observable<std::optional<std::string>>& confirmingQuitName() const { return confirmingQuitName_; }
  PresentationPhase presentationPhase() const { return presentationPhase_; }

  /// `handler` runs after what is shown or said has changed, once for all changes of one turn of the main
  /// loop, and only while the popover is open. Motions that a change starts have begun by then.
  [[nodiscard]] Subscription subscribeToContent(std::function<void()> handler) {
    return contentChanged_.add(std::move(handler));
  }

  // Pictures, at a time from now on

  double ringProgress(double time) const { return animatedProgress.shown(time); }
  /// Of the ring's group.
  double ringScale(double time) const;
  /// 0 to 1, and back.
  double haloBreath(double time) const;
  /// Of the ring, halo and aurora: by the progress shown, the hour, and the calm.
  Colour stateColor(double time) const;
  AuroraPicture aurora(double time) const;
  /// How far the calm after a polish holds the light down.
  double calmIntensity() const { return clearState_.calmIntensity; }
  /// Of all content on the card.
  double presentationOpacity(double time) const { return presentationOpacity_.shown(time); }
  /// 0 shows the culprits, 1 the question whether to quit one.
  double quitConfirmation(double time) const { return quitConfirmation_.shown(time); }
  const DottedReassuranceRing& reassuranceDots() const { return dots_; }
  Movement movement() const;

  PopoverMotion motion(double time) const;
  /// When `motion` falls from full, as far as is known now.
  double restsAt() const;

  // Texts

  /// The one text under the ring, which is also the button's accessibility value.
  std::string statusSentence() const;
  bool showsReassurance() const;
  bool showsOpenSettingsLink() const;

  /// The sentence that names the culprits; empty when there are none to name.
  std::vector<CulpritSentence::Segment> culpritSegments() const;
  /// "Quit … ?"; empty when nothing is being confirmed.
  std::optional<std::string> quitQuestion() const;

  /// Whether a press would start a full polish. The button itself is never switched off.
  bool canPolish() const;
  std::string_view polishToolTip() const;
  std::string_view polishAccessibilityLabel() const;
  std::string_view polishAccessibilityHint() const;

  /// As it is shown, and as it is read out; empty without a figure.
  std::optional<std::string> percentBanner() const;
  std::optional<std::string> percentBannerAccessibilityText() const;

  static constexpr std::string_view polishTitle = "Polish";
  static constexpr std::string_view cancelTitle = "Cancel";
  static constexpr std::string_view quitTitle = "Quit";
  static constexpr std::string_view openSettingsTitle = "Open Settings";
  static constexpr std::string_view openSettingsHint =
      "Opens System Settings to Login Items so you can approve Vorli's background helper.";
  static constexpr std::string_view gearLabel = "Settings";
  static constexpr std::string_view gearHint = "Open Vorli settings.";

  VorliPopoverSize desiredSize() const;

  // Actions

  /// The button's press, in a task of its own.
  TaskHandle polishPressed();
  /// Asks whether to quit the application of that name.
  void culpritNamePressed(const std::string& name);
  void quitConfirmed();
  void quitCancelled();
  void openSettingsLinkPressed();
  void gearPressed();
  /// What the gear opens; nothing until it is set.
  void setGearHandler(std::function<void()> handler) { gearHandler_ = std::move(handler); }

 private:
  bool isHelperEnabled() const;
  const std::optional<CulpritFormatter::CulpritData>& culprit() const;
  void followRing(double ringProgress);
  void followInputs();
  template <typename T>
  void follow(const Observable<T>& input);
  template <typename T>
  void follow(const Animated<T>& input);
  void culpritChanged();
  void contentChanged();
  void updateContent();

  void animateAppear();
  void animateDismiss();
  void firstAppear();
  void playLaunchCeremony();
  void setPresentationPhase(PresentationPhase phase);
  void setConfirmingQuitName(std::optional<std::string> name);
  void reportSize();

  Scheduler& scheduler_;
  NotificationCenter& notifications_;
  SystemMonitor& systemMonitor_;
  HelperManager& helperManager_;
  const ClearState& clearState_;
  ports::Workspace& workspace_;
  const ports::ApplicationBundle& bundle_;
  const ports::CalendarClock& calendar_;
  ports::KeyValueStore& defaults_;
  const CulpritFormatter& culpritFormatter_;
  const ports::MotionPreference& motion_;

  Animated<double> haloBreath_;
  Animated<double> presentationOpacity_;
  Animated<double> quitConfirmation_;
  AuroraField aurora_;
  DottedReassuranceRing dots_;
  PresentationPhase presentationPhase_ = PresentationPhase::folded;
  Observable<std::optional<std::string>> confirmingQuitName_;
  std::function<void()> gearHandler_;

  bool hasAppeared_ = false;
  bool isOpen_ = false;  // from the opening to the start of the closing
  bool isUpdateQueued_ = false;
  double reportedHeight_ = 0.0;
  // Worked out when it is asked for: while the popover is shut nobody does.
  mutable std::optional<CulpritFormatter::CulpritData> culprit_;
  mutable bool isCulpritStale_ = true;

  // Of the monitor; those that come during a polish are seen and dropped.
  double seenProgress_;
  RingState seenState_;
  PolishFlow polish_;
  SubscriberList<> contentChanged_;
  std::vector<Subscription> subscriptions_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // for what waits on the main loop
  TaskScope tasks_;
};

}  // namespace vorli
