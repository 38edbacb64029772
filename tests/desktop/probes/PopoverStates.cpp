#include "tests/desktop/probes/PopoverStates.h"

#include "ambient/RingGradient.h"
#include "base/Animation.h"
#include "insights/CulpritSentence.h"
#include "polish/PolishState.h"
#include "polish/PolishTimings.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Publish.h"
#include "ui/popover/PopoverLayout.h"

namespace vorli {
namespace {

using namespace ui;

constexpr int noon = 12;

QString qString(const std::string& text) {
  return QString::fromStdString(text);
}

/// Builds one state from its differences to the state at rest.
class State {
 public:
  State(const char* name, Appearance appearance, double progress, double calm = 0.0, int hour = noon) {
    state_.name = QString::fromLatin1(name);
    auto& picture = state_.picture;
    picture.appearance = appearance;
    picture.calmIntensity = calm;
    picture.ring.progress = progress;
    picture.ring.stateColour = ringDisplayColour(progress, hour, calm);
    fakes::ManualScheduler clock;
    picture.aurora = AuroraField(clock).picture(clock.now(), picture.ring.stateColour, calm);
  }

  State& says(const char* sentence) {
    words().sentence.text = QString::fromUtf8(sentence);
    return *this;
  }
  State& ready() {
    ring().canPolish = true;
    ring().labelReady = true;
    ring().lens = 1.0;
    return *this;
  }
  State& releasing() {
    ring().lens = 0.25;
    ring().labelOpacity = 0.0;
    return *this;
  }
  State& polished() {
    ring().labelOpacity = 0.0;
    ring().rested = 1.0;
    return *this;
  }
  State& names(std::vector<std::string> names) {
    const CulpritSentence sentence({names, names.size() == 1 ? "is" : "are", {}});
    auto& culprits = words().culprits.emplace();
    for (const auto& segment : sentence.segments()) {
      const bool isName = segment.kind == CulpritSentence::Segment::Kind::app;
      culprits.pieces.push_back(
          {isName ? CulpritPiece::Kind::name : CulpritPiece::Kind::text, qString(segment.text)});
      if (isName) culprits.names.emplace_back();
    }
    return *this;
  }
  State& name(std::size_t index, ControlPicture control) {
    words().culprits->names[index] = control;
    return *this;
  }
  State& quit(const char* name) {
    words().culprits.reset();
    words().quit.emplace().name = QString::fromUtf8(name);
    return *this;
  }
  State& banner(const char* text) {
    words().banner = BannerPicture{QString::fromUtf8(text)};
    return *this;
  }
  State& link(ControlPicture control) {
    words().link = LinkPicture{control};
    return *this;
  }
  State& dots() {
    ring().labelOpacity = 0.0;
    const fakes::ManualScheduler clock;
    DottedReassuranceRing model(clock);
    model.jumpTo(true);
    ring().dots = model.dots(clock.now());
    return *this;
  }

  RingPicture& ring() { return state_.picture.ring; }
  WordsPicture& words() { return state_.picture.words; }

  PopoverState withHeight(double height) {
    const bool names = words().culprits || words().quit;
    const auto grid = PopoverGrid::of(height, words().sentence.text,
                                      names ? PopoverGrid::Under::culprits : PopoverGrid::Under::nothing);
    state_.picture.cardHeight = height;
    state_.picture.ringCentreY = grid.ringCentreY;
    words().headlineTop = grid.headlineTop;
    return state_;
  }

 private:
  PopoverState state_;
};

constexpr ControlPicture hovered{.hover = 1.0};
constexpr ControlPicture pressed{.hover = 1.0, .press = 1.0};
constexpr ControlPicture focused{.focused = true};

void addCalm(QList<PopoverState>& states, Appearance appearance) {
  states << State("healthy", appearance, 0.12).says("Your computer feels great.").withHeight(240);
  states << State("healthy-pointer-on-the-ring", appearance, 0.12)
                .says("Nothing to polish. Enjoy the calm.")
                .dots()
                .withHeight(240);
  auto evening =
      State("healthy-evening-gear-hovered", appearance, 0.34, 0.0, 18).says("Your computer feels great.");
  evening.words().gear = hovered;
  states << evening.withHeight(240);
}

void addWarming(QList<PopoverState>& states, Appearance appearance) {
  const auto warming = [appearance](const char* name) {
    return State(name, appearance, 0.62).says("Your computer is starting to fill up.").ready();
  };
  states << warming("warming").names({"Chrome"}).withHeight(304);
  states << warming("warming-two-lines")
                .says("Your computer is starting to fill up.")
                .names({"Chrome", "Photoshop"})
                .withHeight(304);
  states << warming("warming-two-lines-quit")
                .says("Your computer is starting to fill up.")
                .quit("Chrome")
                .withHeight(304);
  states << warming("warming-pointer-on-the-name").names({"Chrome"}).name(0, hovered).withHeight(304);
  states << warming("warming-name-pressed").names({"Chrome", "Figma"}).name(1, pressed).withHeight(304);
}

void addCritical(QList<PopoverState>& states, Appearance appearance) {
  const auto critical = [appearance](const char* name) {
    return State(name, appearance, 0.91).says("Your computer is full. Time to polish it.").ready();
  };
  states << critical("critical-two-names").names({"Chrome", "Photoshop"}).withHeight(304);
  states << critical("critical-long-names")
                .names({"Visual Studio Code", "Affinity Designer 2"})
                .name(0, hovered)
                .withHeight(304);
  states << critical("critical-very-long-name")
                .names({"Logitech G HUB Agent", "Microsoft Remote Desktop Beta"})
                .withHeight(304);
  auto ringHovered = critical("critical-pointer-on-the-ring").names({"Chrome", "Figma"});
  ringHovered.ring().button = hovered;
  states << ringHovered.withHeight(304);
  auto ringFocused = critical("critical-key-focus");
  ringFocused.ring().button = focused;
  states << ringFocused.withHeight(240);
  auto ringPressed = critical("critical-ring-pressed");
  ringPressed.ring().button = pressed;
  ringPressed.words().gear = focused;
  states << ringPressed.withHeight(240);
  auto confirmation = critical("quit-confirmation").quit("Chrome");
  confirmation.words().quit->cancel = focused;
  states << confirmation.withHeight(304);
  auto longName = State("quit-confirmation-long-name", appearance, 0.62)
                      .says("Your computer is starting to fill up.")
                      .ready()
                      .quit("Microsoft Remote Desktop Beta for Enterprise");
  longName.words().quit->quit = hovered;
  states << longName.withHeight(304);
}

void addPolished(QList<PopoverState>& states, Appearance appearance) {
  const auto polished = [appearance](const char* name, const char* sentence) {
    return State(name, appearance, 0.0, 0.95).says(sentence).polished();
  };
  const char* breathe = "Now, your computer has room to breathe.";
  states << polished("polished", breathe).withHeight(304);
  states << polished("polished-percentage", breathe).banner("12% LIGHTER").withHeight(304);
  states << polished("helper-not-approved", "A gentle tidy. Approve Vorli's helper for a full polish.")
                .link(hovered)
                .withHeight(304);
  states << polished("helper-not-reached", "A gentle tidy. Couldn't reach the helper for a full polish.")
                .link(focused)
                .withHeight(304);
  states << polished("audio-playing", "A gentle tidy. Held off the deep polish so your audio stays smooth.")
                .withHeight(304);
  states << State("percentage-alone", appearance, 0.12, 0.6)
                .says("Your computer feels great.")
                .banner("12% LIGHTER")
                .withHeight(264);
}

}  // namespace

QList<PopoverState> popoverStates(Appearance appearance) {
  QList<PopoverState> states;
  addCalm(states, appearance);
  addWarming(states, appearance);
  addCritical(states, appearance);
  addPolished(states, appearance);
  return states;
}

namespace {

// Sets the values that the flow of a polish and its ceremony set.
PopoverState polishMoment(Appearance appearance, double time, fakes::ManualScheduler& clock,
                          const AuroraField& aurora, const PolishState& polish) {
  constexpr double labelFade = 0.25;
  const double calm =
      time < PolishTimings::full.minDisplayTime
          ? 0.0
          : Animation::easeInOut(PolishTimings::calmRise).progress(time - PolishTimings::full.minDisplayTime);
  const double progress = polish.animatedProgress.shown();
  const bool isOver = time >= PolishTimings::full.minDisplayTime;
  State state(qPrintable(QStringLiteral("polish-%1").arg(time, 0, 'f', 2)), appearance, progress, calm);
  state.says(isOver ? "Now, your computer has room to breathe." : "Polishing your computer…").releasing();
  state.ring().labelOpacity = 1.0 - Animation::easeOut(labelFade).progress(time);
  state.ring().lens = 1.0 - 0.75 * Animation::easeOut(labelFade).progress(time);
  if (isOver) {
    const double since = time - PolishTimings::full.minDisplayTime;
    state.ring().lens = 0.25 + 0.2 * Animation::easeOut(labelFade).progress(since);
    state.ring().rested = Animation::easeInOut(0.9).progress(since);
  }
  state.ring().scale = polish.celebrationScale.shown();
  state.ring().canPolish = time == 0.0;
  state.ring().labelReady = true;
  if (isOver) state.banner("12% LIGHTER");
  PopoverState placed = state.withHeight(isOver ? 304 : 240);
  placed.picture.aurora = aurora.picture(clock.now(), placed.picture.ring.stateColour, calm);
  return placed;
}

}  // namespace

QList<PopoverState> polishMoments(Appearance appearance) {
  fakes::ManualScheduler clock;
  AuroraField aurora(clock);
  PolishState polish(clock);
  fakes::publish(polish.animatedProgress, 0.91);
  const double start = clock.now();
  aurora.clearTriggered();
  withAnimation(Animation::timingCurve({0.55, 0.055, 0.675, 0.19}, PolishTimings::drain),
                [&] { fakes::publish(polish.animatedProgress, 0.0); });
  QList<PopoverState> states;
  for (const double time : {0.0, 0.2, 0.5, 0.7, 0.9, 1.0, 1.1, 1.3, 1.7, 1.8, 2.5, 2.65, 3.1, 3.25, 4.4}) {
    clock.advanceTo(start + time);
    if (time == PolishTimings::full.minDisplayTime) {
      withAnimation(Animation::spring(PolishTimings::growResponse, 0.55),
                    [&] { fakes::publish(polish.celebrationScale, 1.08); });
    }
    if (time == PolishTimings::full.minDisplayTime + PolishTimings::untilShrink) {
      withAnimation(Animation::easeInOut(PolishTimings::shrink),
                    [&] { fakes::publish(polish.celebrationScale, 1.0); });
    }
    states << polishMoment(appearance, time, clock, aurora, polish);
  }
  return states;
}

QList<PopoverState> unfurlMoments(Appearance appearance) {
  constexpr double strip = 24.0, seconds = 0.34;
  const auto unfurl = Animation::timingCurve({0.22, 0.9, 0.28, 1.06}, seconds);
  QList<PopoverState> states;
  for (const double time : {0.0, 0.05, 0.1, 0.2, 0.34}) {
    auto placed = State("", appearance, 0.12).says("Your computer feels great.").withHeight(240);
    placed.name = QStringLiteral("unfurl-%1").arg(time, 0, 'f', 2);
    placed.picture.cardHeight = strip + (placed.picture.cardHeight - strip) * unfurl.progress(time);
    placed.picture.contentOpacity = Animation::easeOut(0.14).progress(time);
    states << placed;
  }
  return states;
}

}  // namespace vorli
