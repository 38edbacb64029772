#pragma once

#include "ambient/AuroraField.h"
#include "ambient/Movement.h"
#include "ambient/Notifications.h"
#include "base/Animated.h"
#include "base/Colour.h"
#include "base/HostSystem.h"
#include "base/Published.h"
#include "base/SubscriberList.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "insights/CulpritFormatter.h"
#include "insights/CulpritSentence.h"
#include "polish/PolishFlow.h"
#include "polish/PolishState.h"
#include "popover/DottedReassuranceRing.h"
#include "popover/PopoverTexts.h"
#include "ports/KeyValueStore.h"
#include "ports/MotionPreference.h"
#include "sampling/RingState.h"

#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Dependencies of the popover's view.
struct PopoverServices {
  PolishServices polish;
  ports::KeyValueStore& defaults;
  const CulpritFormatter& culpritFormatter;
  ports::MotionPreference& motion;
  const PopoverTexts& texts = ofThisSystem<PopoverTexts>();
};

/// How often the popover's picture changes at a moment: not at all, only with the slow breath of the halo and
/// the fading calm, or all the time.
enum class PopoverMotion { none, breath, full };

/// The content of the popover: what it shows and says, and what its controls do. It is created once, is kept
/// while the popover is closed, and computes nothing then. Times are the scheduler's. Main thread.
class PopoverView : public PolishState {
 public:
  enum class PresentationPhase { visible, folded };

  explicit PopoverView(const PopoverServices& services);
  ~PopoverView();

  // State

  /// True while the pointer is over the ring.
  Published<bool, PopoverView> hovered{false};
  /// Name of the application whose quit the user is asked to confirm.
  const Observable<std::optional<std::string>>& confirmingQuitName() const { return confirmingQuitName_; }
  PresentationPhase presentationPhase() const { return presentationPhase_; }

  /// Calls `handler` after pictures or texts have changed, once for all changes of one turn of the main loop,
  /// and only while the popover is open. Animations that a change starts have begun by then.
  [[nodiscard]] Subscription subscribeToContent(std::function<void()> handler) {
    return contentChanged_.add(std::move(handler));
  }

  // Pictures; `time` is now or later

  double ringProgress(double time) const { return animatedProgress.shown(time); }
  /// Part of the ring that it still has to fill or drain at `time`, and the time at which it arrives.
  double ringWayLeft(double time) const { return std::abs(animatedProgress.model() - ringProgress(time)); }
  double ringArrivesAt() const { return animatedProgress.restsAt(); }
  /// Time at which the ring's bounce and its dots are at rest.
  double ringRestsAt() const;
  /// Time at which the aurora and everything that only fades is at rest.
  double lightRestsAt() const;
  /// Scale of the ring's group.
  double ringScale(double time) const;
  /// Phase of the halo's breath: 0 to 1 and back.
  double haloBreath(double time) const;
  /// Colour of the ring, halo and aurora; depends on the progress shown, the hour and the calm.
  Colour stateColor(double time) const;
  AuroraPicture aurora(double time) const;
  /// How much the calm after a polish dims the light, 0 to 1.
  double calmIntensity() const { return clearState_.calmIntensity; }
  /// Opacity of all content on the card.
  double presentationOpacity(double time) const { return presentationOpacity_.shown(time); }
  /// 0 shows the culprits, 1 the question whether to quit one.
  double quitConfirmation(double time) const { return quitConfirmation_.shown(time); }
  const DottedReassuranceRing& reassuranceDots() const { return dots_; }
  Movement movement() const;

  PopoverMotion motion(double time) const;
  /// Time until which `motion` is full, unless something else begins to move before.
  double restsAt() const;

  // Texts

  /// Text under the ring, which is also the button's accessibility value.
  std::string statusSentence() const;
  bool showsReassurance() const;
  /// Time at which the outcome of a polish has faded from the text; in the past when it does not fade.
  double outcomeFadesUntil() const { return outcome_.restsAt(); }
  bool showsOpenSettingsLink() const;

  /// Sentence that names the culprits, or says for a while that one of them cannot be asked to quit; empty
  /// when there are none.
  std::vector<CulpritSentence::Segment> culpritSegments() const;
  /// "Quit … ?"; empty when nothing is being confirmed.
  std::optional<std::string> quitQuestion() const;

  /// True when a press would start a full polish. The button itself is never disabled.
  bool canPolish() const;
  std::string_view polishToolTip() const;
  std::string_view polishAccessibilityLabel() const;
  std::string_view polishAccessibilityHint() const;
  std::string_view openSettingsHint() const { return texts_.openSettingsHint; }

  /// Banner as it is shown, and as a screen reader speaks it; empty without a figure.
  std::optional<std::string> percentBanner() const;
  std::optional<std::string> percentBannerAccessibilityText() const;

  static constexpr std::string_view polishTitle = "Polish";
  static constexpr std::string_view cancelTitle = "Cancel";
  static constexpr std::string_view quitTitle = "Quit";
  static constexpr std::string_view openSettingsTitle = "Open Settings";
  static constexpr std::string_view gearLabel = "Settings";
  static constexpr std::string_view gearHint = "Open Vorli settings.";

  VorliPopoverSize desiredSize() const;

  // Actions

  /// Call when the pointer enters or leaves the ring.
  void setHovered(bool isHovered);
  /// Handles a press of the button, in a task of its own.
  TaskHandle polishPressed();
  /// Asks the user whether to quit the application of that name, or says that it cannot be asked.
  void culpritNamePressed(const std::string& name);
  void quitConfirmed();
  void quitCancelled();
  void openSettingsLinkPressed();
  void gearPressed();
  /// Sets the action of the gear, which does nothing until then.
  void setGearHandler(std::function<void()> handler) { gearHandler_ = std::move(handler); }

 private:
  bool isHelperEnabled() const;
  const std::optional<CulpritFormatter::CulpritData>& culprit() const;
  void followRing(double ringProgress);
  void followInputs();
  template <typename T>
  void follow(const Observable<T>& input);
  template <typename T>
  void follow(const AnimatedValue<T>& input);
  void culpritChanged();
  void contentChanged();
  void updateContent();

  void animateAppear();
  void animateDismiss();
  void seeRing();
  void firstAppear();
  void appearAgain();
  void playLaunchCeremony();
  void setPresentationPhase(PresentationPhase phase);
  void setConfirmingQuitName(std::optional<std::string> name);
  void sayClosedByHand(std::optional<std::string> name);
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
  const PopoverTexts& texts_;
  const PolishTexts& polishTexts_;

  Animated<double> haloBreath_;
  Animated<double> presentationOpacity_;
  Animated<double> quitConfirmation_;
  Animated<double>
      outcome_;  // 1 while the sentence of a polish is set; moves as the polish sets and clears it
  AuroraField aurora_;
  DottedReassuranceRing dots_;
  PresentationPhase presentationPhase_ = PresentationPhase::folded;
  Published<std::optional<std::string>, PopoverView> confirmingQuitName_;
  Published<std::optional<std::string>, PopoverView> closedByHandName_;  // shown instead of the culprits
  Scheduler::TimerId closedByHandTimer_ = 0;
  std::function<void()> gearHandler_;

  bool hasAppeared_ = false;
  bool isOpen_ = false;  // from the opening to the start of the closing
  bool isUpdateQueued_ = false;
  double reportedHeight_ = 0.0;
  // Computed on demand, so never while the popover is closed.
  mutable std::optional<CulpritFormatter::CulpritData> culprit_;
  mutable bool isCulpritStale_ = true;

  // The monitor's latest values. Changes during a polish are noted here but not shown.
  double seenProgress_;
  RingState seenState_;
  PolishFlow polish_;
  SubscriberList<> contentChanged_;
  std::vector<Subscription> subscriptions_;
  std::shared_ptr<bool> alive_ =
      std::make_shared<bool>(true);  // checked by work that is posted to the main loop
  TaskScope tasks_;
};

}  // namespace vorli
