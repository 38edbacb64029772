#include "popover/PopoverView.h"

#include "ambient/RingGradient.h"
#include "base/Animation.h"
#include "polish/AppQuitter.h"
#include "polish/PolishTimings.h"
#include "settings/UserDefaults.h"

#include <algorithm>
#include <utility>

namespace vorli {
namespace {

constexpr double width = 270.0;
constexpr double heightWithSentence = 304.0;
constexpr double heightWithPercentage = 264.0;
constexpr double plainHeight = 240.0;

constexpr const char* ceremonyShownKey = "hasShownLaunchCeremony";

struct PopoverViewTimings {
  static constexpr double launchCeremony = 1.6;
  static constexpr double breath = 5.5;  // one way
  static constexpr double unfold = 0.14;
  static constexpr double fold = 0.12;
  static constexpr double confirmation = 0.2;
  static constexpr double closedByHand = 6.0;  // time to read the sentence
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
      texts_(services.texts),
      polishTexts_(services.polish.texts),
      haloBreath_(scheduler_, 0.0),
      presentationOpacity_(scheduler_, 0.0),
      quitConfirmation_(scheduler_, 0.0),
      outcome_(scheduler_, 0.0),
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

PopoverView::~PopoverView() {
  scheduler_.cancel(closedByHandTimer_);
}

void PopoverView::followInputs() {
  const auto culpritInput = [this](const auto&) { culpritChanged(); };
  subscriptions_.push_back(systemMonitor_.topMemoryHogs.subscribeToChanges(culpritInput));
  subscriptions_.push_back(animatedState.subscribeToChanges(culpritInput));
  subscriptions_.push_back(isReleasing.subscribeToChanges(culpritInput));
  subscriptions_.push_back(postClearSentence.subscribeToChanges(culpritInput));
  subscriptions_.push_back(postClearSentence.subscribeToChanges(
      [this](const auto& sentence) { outcome_ = sentence ? 1.0 : 0.0; }));
  subscriptions_.push_back(auroraClearTrigger.subscribeToChanges([this](int) {
    aurora_.clearTriggered();
    contentChanged();
  }));
  follow(hovered);
  follow(postClearPercentage);
  follow(confirmingQuitName_);
  follow(closedByHandName_);
  follow(helperManager_.status);
  follow(animatedProgress);
  follow(celebrationScale);
}

template <typename T>
void PopoverView::follow(const Observable<T>& input) {
  subscriptions_.push_back(input.subscribeToChanges([this](const T&) { contentChanged(); }));
}

template <typename T>
void PopoverView::follow(const AnimatedValue<T>& input) {
  subscriptions_.push_back(input.subscribe([this](const T&) { contentChanged(); }));
}

void PopoverView::culpritChanged() {
  isCulpritStale_ = true;
  contentChanged();
}

// Several fields can change at once. One update after the last of them reports the final state, above all the
// desired size.
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
  if (!std::exchange(hasAppeared_, true)) {
    firstAppear();
  } else {
    appearAgain();
  }
  isOpen_ = true;
  dots_.jumpTo(showsReassurance());  // the dots may have been visible when the popover was last closed
  withoutAnimation([this] { setPresentationPhase(PresentationPhase::folded); });
  scheduler_.post([this, weak = std::weak_ptr<bool>(alive_)] {
    if (weak.expired() || !isOpen_) return;
    withAnimation(Animation::easeOut(PopoverViewTimings::unfold),
                  [this] { setPresentationPhase(PresentationPhase::visible); });
    contentChanged();
  });
  reportSize();
  contentChanged();
}

void PopoverView::animateDismiss() {
  isOpen_ = false;
  sayClosedByHand(std::nullopt);
  if (presentationPhase_ == PresentationPhase::folded) return;
  withAnimation(Animation::easeIn(PopoverViewTimings::fold),
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

// Values that the monitor has already published count as seen, so that their delivery, which is still
// pending, moves nothing.
void PopoverView::seeRing() {
  seenProgress_ = systemMonitor_.ringProgress;
  seenState_ = ringState(seenProgress_);
}

// The ring has the fresh sample's value at once, unless a polish holds it.
void PopoverView::appearAgain() {
  if (isReleasing) return;
  seeRing();
  withoutAnimation([this] {
    setAnimatedProgress(seenProgress_);
    setAnimatedState(seenState_);
  });
}

void PopoverView::firstAppear() {
  seeRing();
  setAnimatedState(seenState_);
  playLaunchCeremony();
  aurora_.appear();
  withAnimation(
      Animation::easeInOut(PopoverViewTimings::breath).repeatedForever(Animation::Reversal::autoreverse),
      [this] { haloBreath_ = 1.0; });
}

// Fills the ring as a greeting, once per installation.
void PopoverView::playLaunchCeremony() {
  if (boolForKey(defaults_, ceremonyShownKey)) {
    setAnimatedProgress(systemMonitor_.ringProgress);
    return;
  }
  defaults_.setObject(ceremonyShownKey, true);
  withoutAnimation([this] { setAnimatedProgress(0.0); });
  withAnimation(Animation::easeOut(PopoverViewTimings::launchCeremony),
                [this] { setAnimatedProgress(systemMonitor_.ringProgress); });
}

// A change during a polish is dropped, not kept for later: this is all that holds the ring at zero.
void PopoverView::followRing(double ringProgress) {
  const RingState state = ringState(ringProgress);
  const bool progressChanged = std::exchange(seenProgress_, ringProgress) != ringProgress;
  const bool stateChanged = std::exchange(seenState_, state) != state;
  if (isReleasing) return;
  withAnimation(Animation::easeInOut(PolishTimings::follow), [&] {
    if (progressChanged) setAnimatedProgress(ringProgress);
    if (stateChanged) setAnimatedState(state);
  });
}

void PopoverView::setHovered(bool isHovered) {
  if (hovered != isHovered) hovered = isHovered;
}

TaskHandle PopoverView::polishPressed() {
  return tasks_.spawn(polish_.handleTap());
}

void PopoverView::setConfirmingQuitName(std::optional<std::string> name) {
  withAnimation(Animation::easeOut(PopoverViewTimings::confirmation), [&] {
    quitConfirmation_ = name ? 1.0 : 0.0;
    confirmingQuitName_ = std::move(name);
  });
}

void PopoverView::culpritNamePressed(const std::string& name) {
  if (answerToQuitByName(workspace_, bundle_, name) == ports::QuitAnswer::cannotBeAsked) {
    sayClosedByHand(name);
  } else {
    setConfirmingQuitName(name);
  }
}

void PopoverView::sayClosedByHand(std::optional<std::string> name) {
  scheduler_.cancel(closedByHandTimer_);
  if (name) {
    closedByHandTimer_ =
        scheduler_.after(PopoverViewTimings::closedByHand, [this] { sayClosedByHand(std::nullopt); });
  }
  closedByHandName_ = std::move(name);
}

void PopoverView::quitCancelled() {
  setConfirmingQuitName(std::nullopt);
}

void PopoverView::quitConfirmed() {
  const auto name = confirmingQuitName_.get();
  if (!name) return;
  setConfirmingQuitName(std::nullopt);
  if (quitByName(workspace_, bundle_, *name) == ports::QuitAnswer::cannotBeAsked) sayClosedByHand(name);
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

double PopoverView::ringRestsAt() const {
  return std::max(celebrationScale.restsAt(), dots_.restsAt());
}

double PopoverView::lightRestsAt() const {
  return std::max({presentationOpacity_.restsAt(), quitConfirmation_.restsAt(), aurora_.restsAt()});
}

double PopoverView::restsAt() const {
  return std::max({ringArrivesAt(), ringRestsAt(), lightRestsAt()});
}

PopoverMotion PopoverView::motion(double time) const {
  const bool isFolded = presentationPhase_ == PresentationPhase::folded;
  if (isFolded && !presentationOpacity_.isMoving(time)) return PopoverMotion::none;
  if (time < restsAt()) return PopoverMotion::full;
  const bool breathes = !motion_.isReduced() && hasAppeared_;
  return breathes || clearState_.calmIntensity > 0.0 ? PopoverMotion::breath : PopoverMotion::none;
}

}  // namespace vorli
