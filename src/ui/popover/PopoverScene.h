#pragma once

#include "ambient/PopoverView.h"
#include "base/Animated.h"
#include "base/Scheduler.h"
#include "ui/popover/FadedValue.h"
#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPicture.h"

#include <array>
#include <functional>

namespace vorli::ui {

/// What can be pressed in the popover, in the order of the Tab key.
enum class PopoverControlId { polish, firstName, secondName, cancel, quit, link, gear };
inline constexpr std::size_t popoverControlCount = 7;

/// Turns the view's state, the pointer and the card's motion into the picture of a moment. Main thread.
class PopoverScene {
 public:
  /// On which side of the card the status item lies: from there the card unfolds.
  enum class Edge { top, bottom };

  /// `changed` is called when a picture that was at rest is so no longer.
  PopoverScene(Scheduler& scheduler, PopoverView& view, std::function<void()> changed);

  void setAppearance(Appearance appearance);
  void setEdge(Edge edge);

  /// Takes what the view shows at once: while nobody sees it.
  void jumpToContent();
  /// Goes over to what the view shows; at once where nothing of it can be seen yet.
  void followContent(double now);

  double cardHeight() const { return cardHeight_.model(); }
  void setCardHeight(double height);
  void moveCard(double height, const Animation& animation);

  void setHovered(PopoverControlId control, bool hovered);
  void setPressed(PopoverControlId control, bool pressed);
  void setFocusShown(PopoverControlId control, bool shown);
  void releaseControls();

  PopoverPicture picture(double time) const;

  /// What the card shows once all has come to rest, for the places of its controls.
  const WordsPicture& restingWords() const { return restingWords_; }
  double restingRingCentreY() const { return ringCentreY_.model(); }
  /// The upper edge of the content when the card rests, from the card's anchored edge downwards.
  double restingContentHeight() const { return contentHeight_.model(); }
  Edge edge() const { return edge_; }

  /// When the scene's own motions end; the view's are its own.
  double restsAt() const;

 private:
  struct Under {
    QList<CulpritPiece> culprits;
    QString banner;
    bool link = false;
    bool operator==(const Under&) const = default;
  };
  struct ControlState {
    explicit ControlState(const Scheduler& clock) : hover(clock, 0.0), press(clock, 0.0) {}
    Animated<double> hover, press;
    bool focused = false;
  };

  Under underOf() const;
  ControlPicture control(PopoverControlId id, double time) const;
  RingPicture ring(double time) const;
  WordsPicture words(double time) const;
  void restWords();
  bool isReduced() const { return view_.movement() == Movement::dropped; }
  ControlState& state(PopoverControlId id) { return controls_[static_cast<std::size_t>(id)]; }

  PopoverView& view_;
  std::function<void()> changed_;
  Appearance appearance_ = Appearance::light;
  Edge edge_ = Edge::top;

  Animated<double> cardHeight_, contentHeight_, ringCentreY_, headlineTop_;
  Animated<double> lens_, label_, labelOverDots_;
  FadedValue<QString> sentence_;
  FadedValue<Under> under_;
  QString quitName_;  // the last one that was asked for, while its question fades
  bool labelReady_ = false;
  std::array<ControlState, popoverControlCount> controls_;
  WordsPicture restingWords_;
};

}  // namespace vorli::ui
