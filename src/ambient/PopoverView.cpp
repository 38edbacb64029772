#include "ambient/PopoverView.h"

#include "ambient/RingGradient.h"
#include "app/UserDefaults.h"
#include "base/Animation.h"
#include "polish/AppQuitter.h"
#include "polish/PolishTimings.h"

#include <algorithm>
#include <utility>

namespace vorli {
namespace {

constexpr double width = 270.0;
constexpr double heightWithSentence = 304.0;
constexpr double heightWithPercentage = 264.0;
constexpr double plainHeight = 240.0;

constexpr const char* ceremonyShownKey = "hasShownLaunchCeremony";

struct Timings {
  static constexpr double launchCeremony = 1.6;
  static constexpr double breath = 5.5;  // one way
  static constexpr double unfold = 0.14;
  static constexpr double fold = 0.12;
  static constexpr double confirmation = 0.2;
};

}  // namespace

PopoverView::PopoverView(const PopoverServices& services)
    : PolishState(services.polish.scheduler),
      scheduler_(services.polish.scheduler),
      notifications_(services.polish.notifications),
      systemMonitor_(services.polish.systemMonitor),
      helperManager_(services.polish.helperManager),
      clearState_(services.polish.clearState),
      workspace_(services.polish.workspace),
      bundle_(services.polish.bundle),
      calendar_(services.polish.calendar),
      defaults_(services.defaults),
      culpritFormatter_(services.culpritFormatter),
      motion_(services.motion),
      haloBreath_(scheduler_, 0.0),
      presentationOpacity_(scheduler_, 0.0),
      quitConfirmation_(scheduler_, 0.0),
      aurora_(scheduler_),
      dots_(scheduler_),
      seenProgress_(systemMonitor_.ringProgress),
      seenState_(ringState(seenProgress_)),
      polish_(*this, services.polish),
      tasks_(scheduler_) {
  subscriptions_.push_back(systemMonitor_.ringProgress.subscribeOnMainLoop(
      scheduler_, [this](double ringProgress) { followRing(ringProgress); }));
  subscriptions_.push_back(
      notifications_.observe<VorliAnimateAppear>([this](const auto&) { animateAppear(); }));
  subscriptions_.push_back(
      notifications_.observe<VorliAnimateDismiss>([this](const auto&) { animateDismiss(); }));
  subscriptions_.push_back(services.motion.subscribe([this] { contentChanged(); }));
  followInputs();
}

void PopoverView::followInputs() {
  const auto culpritInput = [this](const auto&) { culpritChanged(); };
  subscriptions_.push_back(systemMonitor_.topMemoryHogs.subscribeToChanges(culpritInput));
  subscriptions_.push_back(animatedState.subscribeToChanges(culpritInput));
  subscriptions_.push_back(isReleasing.subscribeToChanges(culpritInput));
  subscriptions_.push_back(postClearSentence.subscribeToChanges(culpritInput));
  subscriptions_.push_back(auroraClearTrigger.subscribeToChanges([this](int) {
    aurora_.clearTriggered();
    contentChanged();
  }));
  follow(hovered);
  follow(postClearPercentage);
  follow(confirmingQuitName_);
  follow(helperManager_.status);
  follow(animatedProgress);
  follow(celebrationScale);
}

template <typename T>
void PopoverView::follow(const Observable<T>& input) {
  subscriptions_.push_back(input.subscribeToChanges([this](const T&) { contentChanged(); }));
}

template <typename T>
void PopoverView::follow(const Animated<T>& input) {
  subscriptions_.push_back(input.subscribe([this](const T&) { contentChanged(); }));
}

void PopoverView::culpritChanged() {
  isCulpritStale_ = true;
  contentChanged();
}

// Several fields change in one go: what is told of them, the wanted size above all, is that of the last.
void PopoverView::contentChanged() {
  if (!isOpen_ || std::exchange(isUpdateQueued_, true)) return;
  scheduler_.post([this, weak = std::weak_ptr<bool>(alive_)] {
    if (!weak.expired()) updateContent();
  });
}

void PopoverView::updateContent() {
  isUpdateQueued_ = false;
  if (!isOpen_) return;
  if (confirmingQuitName_.get() && !culprit()) setConfirmingQuitName(std::nullopt);
  dots_.setVisible(showsReassurance());
  if (desiredSize().height != reportedHeight_) reportSize();
  contentChanged_.deliver();
}

void PopoverView::animateAppear() {
  if (!std::exchange(hasAppeared_, true)) firstAppear();
  isOpen_ = true;
  dots_.jumpTo(showsReassurance());  // those of the last opening may have been up at its end
  withoutAnimation([this] { setPresentationPhase(PresentationPhase::folded); });
  scheduler_.post([this, weak = std::weak_ptr<bool>(alive_)] {
    if (weak.expired() || !isOpen_) return;
    withAnimation(Animation::easeOut(Timings::unfold),
                  [this] { setPresentationPhase(PresentationPhase::visible); });
    contentChanged();
  });
  reportSize();
  contentChanged();
}

void PopoverView::animateDismiss() {
  isOpen_ = false;
  if (presentationPhase_ == PresentationPhase::folded) return;
  withAnimation(Animation::easeIn(Timings::fold),
                [this] { setPresentationPhase(PresentationPhase::folded); });
  contentChanged_.deliver();
}

void PopoverView::setPresentationPhase(PresentationPhase phase) {
  presentationPhase_ = phase;
  presentationOpacity_ = phase == PresentationPhase::visible ? 1.0 : 0.0;
}

void PopoverView::reportSize() {
  const VorliPopoverSize size = desiredSize();
  reportedHeight_ = size.height;
  notifications_.post(size);
}

void PopoverView::firstAppear() {
  // What the monitor published before is seen: its delivery, still on its way, does not cut the ceremony off.
  seenProgress_ = systemMonitor_.ringProgress;
  seenState_ = ringState(seenProgress_);
  animatedState = seenState_;
  playLaunchCeremony();
  aurora_.appear();
  withAnimation(Animation::easeInOut(Timings::breath).repeatedForever(Animation::Reversal::autoreverse),
                [this] { haloBreath_ = 1.0; });
}

// Once in the life of the installation the ring fills by itself.
void PopoverView::playLaunchCeremony() {
  if (boolForKey(defaults_, ceremonyShownKey)) {
    animatedProgress = systemMonitor_.ringProgress;
    return;
  }
  defaults_.setObject(ceremonyShownKey, true);
  withoutAnimation([this] { animatedProgress = 0.0; });
  withAnimation(Animation::easeOut(Timings::launchCeremony),
                [this] { animatedProgress = systemMonitor_.ringProgress; });
}

// A change during a polish is dropped, not kept for later: that alone holds the ring at zero.
void PopoverView::followRing(double ringProgress) {
  const RingState state = ringState(ringProgress);
  const bool progressChanged = std::exchange(seenProgress_, ringProgress) != ringProgress;
  const bool stateChanged = std::exchange(seenState_, state) != state;
  if (isReleasing) return;
  withAnimation(Animation::easeInOut(PolishTimings::follow), [&] {
    if (progressChanged) animatedProgress = ringProgress;
    if (stateChanged) animatedState = state;
  });
}

TaskHandle PopoverView::polishPressed() {
  return tasks_.spawn(polish_.handleTap());
}

void PopoverView::setConfirmingQuitName(std::optional<std::string> name) {
  withAnimation(Animation::easeOut(Timings::confirmation), [&] {
    quitConfirmation_ = name ? 1.0 : 0.0;
    confirmingQuitName_ = std::move(name);
  });
}

void PopoverView::culpritNamePressed(const std::string& name) {
  setConfirmingQuitName(name);
}

void PopoverView::quitCancelled() {
  setConfirmingQuitName(std::nullopt);
}

void PopoverView::quitConfirmed() {
  const auto name = confirmingQuitName_.get();
  if (!name) return;
  setConfirmingQuitName(std::nullopt);
  quitByName(workspace_, bundle_, *name);
  systemMonitor_.refresh();
}

void PopoverView::openSettingsLinkPressed() {
  helperManager_.openLoginItems();
}

void PopoverView::gearPressed() {
  if (gearHandler_) gearHandler_();
}

VorliPopoverSize PopoverView::desiredSize() const {
  if (postClearSentence.get() || culprit()) return {width, heightWithSentence};
  if (postClearPercentage.get()) return {width, heightWithPercentage};
  return {width, plainHeight};
}

Movement PopoverView::movement() const {
  return motion_.isReduced() ? Movement::dropped : Movement::kept;
}

double PopoverView::ringScale(double time) const {
  return motion_.isReduced() ? 1.0 : celebrationScale.shown(time);
}

double PopoverView::haloBreath(double time) const {
  return motion_.isReduced() ? 0.0 : haloBreath_.shown(time);
}

Colour PopoverView::stateColor(double time) const {
  return ringDisplayColour(animatedProgress.shown(time), calendar_.localHour(), clearState_.calmIntensity);
}

AuroraPicture PopoverView::aurora(double time) const {
  return aurora_.picture(time, stateColor(time), clearState_.calmIntensity, movement());
}

double PopoverView::restsAt() const {
  return std::max({animatedProgress.restsAt(), celebrationScale.restsAt(), presentationOpacity_.restsAt(),
                   quitConfirmation_.restsAt(), aurora_.restsAt(), dots_.restsAt()});
}

PopoverMotion PopoverView::motion(double time) const {
  const bool isFolded = presentationPhase_ == PresentationPhase::folded;
  if (isFolded && !presentationOpacity_.isMoving(time)) return PopoverMotion::none;
  if (time < restsAt()) return PopoverMotion::full;
  const bool breathes = !motion_.isReduced() && hasAppeared_;
  return breathes || clearState_.calmIntensity > 0.0 ? PopoverMotion::breath : PopoverMotion::none;
}

}  // namespace vorli
