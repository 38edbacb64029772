#include "ui/popover/PopoverScene.h"

#include "ui/kit/QtText.h"

#include <algorithm>
#include <utility>

namespace vorli::ui {
namespace {

struct PopoverSceneTimings {
  static constexpr double resize = 0.32;
  static constexpr double hoverIn = 0.12, hoverOut = 0.16;
  static constexpr double pressResponse = 0.2, pressDamping = 0.55;
  static constexpr double labelOut = 0.25, labelIn = 0.6, labelUnderDots = 0.16;
  static constexpr double rest = 0.9;  // as long as the calm takes to rise
};

constexpr double readyLens = 1.0, restingLens = 0.45, releasingLens = 0.25;
constexpr double collapsedHeight = 24.0;
constexpr double unseen = 0.05;  // an opacity below which nothing can be seen

// Scales the light and the sparks with the ring, whose group they belong to.
void scaleAurora(AuroraPicture& aurora, double scale) {
  for (auto* layer : {&aurora.warmCloud, &aurora.bloom, &aurora.leak}) layer->scale *= scale;
  if (!aurora.sparks) return;
  for (auto& spark : *aurora.sparks) {
    spark.x *= scale;
    spark.y *= scale;
    spark.scale *= scale;
  }
}

// True from the outcome of a polish on, when its ring rests.
bool isPolished(const PopoverView& view) {
  return view.isReleasing && view.postClearSentence.get().has_value() && view.animatedProgress.model() == 0.0;
}

double lensOf(const PopoverView& view) {
  if (view.isReleasing && !isPolished(view)) return releasingLens;
  return view.canPolish() ? readyLens : restingLens;
}

CulpritPiece pieceOf(const CulpritSentence::Segment& segment) {
  const bool isName = segment.kind == CulpritSentence::Segment::Kind::app;
  return {isName ? CulpritPiece::Kind::name : CulpritPiece::Kind::text, qtText(segment.text)};
}

}  // namespace

PopoverScene::PopoverScene(Scheduler& scheduler, PopoverView& view, std::function<void()> changed)
    : view_(view),
      changed_(std::move(changed)),
      cardHeight_(scheduler, collapsedHeight),
      contentHeight_(scheduler, 0.0),
      ringCentreY_(scheduler, 0.0),
      headlineTop_(scheduler, 0.0),
      lens_(scheduler, restingLens),
      rested_(scheduler, 0.0),
      label_(scheduler, 1.0),
      labelOverDots_(scheduler, 1.0),
      sentence_(scheduler, [this] { changed_(); }),
      under_(scheduler, [this] { changed_(); }),
      controls_{ControlState(scheduler), ControlState(scheduler), ControlState(scheduler),
                ControlState(scheduler), ControlState(scheduler), ControlState(scheduler),
                ControlState(scheduler)} {
  jumpToContent();
}

void PopoverScene::setAppearance(Appearance appearance) {
  appearance_ = appearance;
  changed_();
}

void PopoverScene::setEdge(Edge edge) {
  edge_ = edge;
  changed_();
}

PopoverScene::Under PopoverScene::underOf() const {
  Under under;
  for (const auto& segment : view_.culpritSegments()) under.culprits.push_back(pieceOf(segment));
  if (const auto banner = view_.percentBanner()) under.banner = qtText(*banner);
  under.link = view_.showsOpenSettingsLink();
  return under;
}

PopoverGrid::Under PopoverScene::gridUnder() const {
  return under_.wanted().culprits.isEmpty() ? PopoverGrid::Under::nothing : PopoverGrid::Under::culprits;
}

void PopoverScene::jumpToContent() {
  sentence_.jumpTo(qtText(view_.statusSentence()));
  under_.jumpTo(underOf());
  withoutAnimation([this] {
    const double height = view_.desiredSize().height;
    const auto grid = PopoverGrid::of(height, sentence_.wanted(), gridUnder());
    contentHeight_ = height;
    ringCentreY_ = grid.ringCentreY;
    headlineTop_ = grid.headlineTop;
    labelReady_ = view_.canPolish();
    lens_ = lensOf(view_);
    rested_ = isPolished(view_) ? 1.0 : 0.0;
    label_ = view_.isReleasing ? 0.0 : 1.0;
    labelOverDots_ = view_.showsReassurance() ? 0.0 : 1.0;
  });
  restWords();
}

void PopoverScene::followContent(double now) {
  if (view_.presentationOpacity(now) < unseen) return jumpToContent();
  // The outcome of a polish leaves at the pace that the polish gives it, more slowly than other texts.
  const double fade = view_.outcomeFadesUntil() - now;
  const auto leaving =
      fade > 0.0 ? Animation::easeInOut(fade) : Animation::easeIn(FadedValue<QString>::outSeconds);
  sentence_.fadeTo(qtText(view_.statusSentence()), leaving);
  under_.fadeTo(underOf(), leaving);
  const double height = view_.desiredSize().height;
  const auto grid = PopoverGrid::of(height, sentence_.wanted(), gridUnder());
  const auto go = [](Animated<double>& value, double target, const Animation& animation) {
    if (value.model() != target) withAnimation(animation, [&] { value = target; });
  };
  const auto resize = isReduced() ? Animation::linear(0.0) : Animation::standard(PopoverSceneTimings::resize);
  go(contentHeight_, height, resize);
  go(ringCentreY_, grid.ringCentreY, resize);
  go(headlineTop_, grid.headlineTop, resize);

  const bool releases = view_.isReleasing;
  if (!releases) labelReady_ = view_.canPolish();
  go(lens_, lensOf(view_), Animation::easeOut(PopoverSceneTimings::labelOut));
  go(rested_, isPolished(view_) ? 1.0 : 0.0, Animation::easeInOut(PopoverSceneTimings::rest));
  go(label_, releases ? 0.0 : 1.0,
     releases ? Animation::easeOut(PopoverSceneTimings::labelOut)
              : Animation::easeInOut(PopoverSceneTimings::labelIn));
  go(labelOverDots_, view_.showsReassurance() ? 0.0 : 1.0,
     Animation::easeOut(PopoverSceneTimings::labelUnderDots));
  restWords();
}

void PopoverScene::restWords() {
  if (const auto& name = view_.confirmingQuitName().get()) quitName_ = qtText(*name);
  WordsPicture words;
  words.headlineTop = headlineTop_.model();
  words.sentence.text = sentence_.wanted();
  const auto& under = under_.wanted();
  const bool asks = view_.confirmingQuitName().get().has_value();
  if (asks) {
    words.quit.emplace().name = quitName_;
  } else if (!under.culprits.isEmpty()) {
    words.culprits.emplace().pieces = under.culprits;
  }
  if (!under.banner.isEmpty()) words.banner.emplace().text = under.banner;
  if (under.link) words.link.emplace();
  restingWords_ = std::move(words);
}

void PopoverScene::setCardHeight(double height) {
  withoutAnimation([&] { cardHeight_ = height; });
  changed_();
}

// Gives the card its full height at once if the user asked for less movement; then only its content fades.
void PopoverScene::moveCard(double height, const Animation& animation) {
  if (!isReduced()) {
    withAnimation(animation, [&] { cardHeight_ = height; });
  } else if (height > collapsedHeight) {
    withoutAnimation([&] { cardHeight_ = height; });
  }
  changed_();
}

void PopoverScene::setHovered(PopoverControlId control, bool hovered) {
  const double seconds = hovered ? PopoverSceneTimings::hoverIn : PopoverSceneTimings::hoverOut;
  withAnimation(Animation::easeOut(seconds), [&] { state(control).hover = hovered ? 1.0 : 0.0; });
  changed_();
}

void PopoverScene::setPressed(PopoverControlId control, bool pressed) {
  const auto spring =
      Animation::spring(PopoverSceneTimings::pressResponse, PopoverSceneTimings::pressDamping);
  withAnimation(isReduced() ? Animation::linear(0.0) : spring,
                [&] { state(control).press = pressed ? 1.0 : 0.0; });
  changed_();
}

void PopoverScene::setFocusShown(PopoverControlId control, bool shown) {
  state(control).focused = shown;
  changed_();
}

void PopoverScene::releaseControls() {
  withoutAnimation([this] {
    for (auto& control : controls_) {
      control.hover = 0.0;
      control.press = 0.0;
      control.focused = false;
    }
  });
}

ControlPicture PopoverScene::control(PopoverControlId id, double time) const {
  const auto& state = controls_[static_cast<std::size_t>(id)];
  return {state.hover.shown(time), state.press.shown(time), state.focused, !isReduced()};
}

RingPicture PopoverScene::ring(double time) const {
  RingPicture ring;
  ring.progress = view_.ringProgress(time);
  ring.stateColour = view_.stateColor(time);
  ring.scale = view_.ringScale(time);
  ring.lens = lens_.shown(time);
  ring.rested = rested_.shown(time);
  ring.canPolish = view_.canPolish();
  ring.labelReady = labelReady_;
  ring.button = control(PopoverControlId::polish, time);
  ring.labelOpacity = label_.shown(time) * labelOverDots_.shown(time);
  ring.dots = view_.reassuranceDots().dots(time, view_.movement());
  ring.dotsScale = view_.reassuranceDots().scale(time, view_.movement());
  return ring;
}

WordsPicture PopoverScene::words(double time) const {
  WordsPicture words;
  words.headlineTop = headlineTop_.shown(time);
  words.sentence = {sentence_.shown(), sentence_.opacity(time)};
  words.gear = control(PopoverControlId::gear, time);
  const double opacity = under_.opacity(time);
  const double asks = view_.quitConfirmation(time);
  const auto& under = under_.shown();
  if (!under.culprits.isEmpty() && asks < 1.0) {
    words.culprits = CulpritPicture{
        under.culprits,
        {control(PopoverControlId::firstName, time), control(PopoverControlId::secondName, time)},
        opacity * (1.0 - asks)};
  }
  if (asks > 0.0) {
    words.quit = QuitPicture{quitName_, control(PopoverControlId::cancel, time),
                             control(PopoverControlId::quit, time), asks};
  }
  if (!under.banner.isEmpty()) words.banner = BannerPicture{under.banner, opacity};
  if (under.link) words.link = LinkPicture{control(PopoverControlId::link, time), opacity};
  return words;
}

QString PopoverScene::paintedName(qsizetype index) const {
  for (const auto& piece : under_.shown().culprits) {
    if (piece.kind == CulpritPiece::Kind::name && index-- == 0) return piece.text;
  }
  return {};
}

PopoverPicture PopoverScene::picture(double time) const {
  PopoverPicture picture;
  picture.appearance = appearance_;
  picture.cardHeight = cardHeight_.shown(time);
  picture.cardTop = edge_ == Edge::bottom ? contentHeight_.shown(time) - picture.cardHeight : 0.0;
  picture.ringCentreY = ringCentreY_.shown(time);
  picture.calmIntensity = view_.calmIntensity();
  picture.haloBreath = view_.haloBreath(time);
  picture.aurora = view_.aurora(time);
  // Turning a round light changes no pixel, so it must not cause a new picture.
  picture.aurora.warmCloud.rotationDegrees = 0.0;
  picture.aurora.bloom.rotationDegrees = 0.0;
  picture.ring = ring(time);
  scaleAurora(picture.aurora, picture.ring.scale);
  picture.words = words(time);
  picture.contentOpacity = view_.presentationOpacity(time);
  return picture;
}

double PopoverScene::restsAt() const {
  double rest = std::max({cardHeight_.restsAt(), contentHeight_.restsAt(), ringCentreY_.restsAt(),
                          headlineTop_.restsAt(), lens_.restsAt(), rested_.restsAt(), label_.restsAt(),
                          labelOverDots_.restsAt(), sentence_.restsAt(), under_.restsAt()});
  for (const auto& control : controls_)
    rest = std::max({rest, control.hover.restsAt(), control.press.restsAt()});
  return rest;
}

}  // namespace vorli::ui
