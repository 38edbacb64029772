#pragma once

#include "base/Animated.h"
#include "base/Scheduler.h"
#include "popover/PopoverView.h"
#include "ui/popover/FadedValue.h"
#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPicture.h"

#include <array>
#include <functional>

namespace vorli::ui {

/// The controls of the popover, in tab order.
enum class PopoverControlId { polish, firstName, secondName, cancel, quit, link, gear };
inline constexpr std::size_t popoverControlCount = 7;

/// Turns the view's state, the pointer and the card's motion into the picture of a moment. Main thread.
class PopoverScene {
 public:
  /// The side of the card on which the status item lies; the card unfolds from it.
  enum class Edge { top, bottom };

  /// `changed` is called when a picture that was at rest starts to change, unless the caller causes that with
  /// `jumpToContent` or `followContent`.
  PopoverScene(Scheduler& scheduler, PopoverView& view, std::function<void()> changed);

  void setAppearance(Appearance appearance);
  void setEdge(Edge edge);

  /// Shows the view's current content at once, for use while the popover is hidden.
  void jumpToContent();
  /// Moves to the view's current content; shows it at once while nothing is visible yet.
  void followContent(double now);

  double cardHeight() const { return cardHeight_.model(); }
  void setCardHeight(double height);
  void moveCard(double height, const Animation& animation);

  void setHovered(PopoverControlId control, bool hovered);
  void setPressed(PopoverControlId control, bool pressed);
  void setFocusShown(PopoverControlId control, bool shown);
  void releaseControls();

  PopoverPicture picture(double time) const;
  /// The name that is painted at this place in the culprit sentence, which may be about to change. Empty when
  /// there is none.
  QString paintedName(qsizetype index) const;

  /// The words of the card once everything is at rest; used to place its controls.
  const WordsPicture& restingWords() const { return restingWords_; }
  double restingRingCentreY() const { return ringCentreY_.model(); }
  /// Height of the content when the card is at rest.
  double restingContentHeight() const { return contentHeight_.model(); }
  Edge edge() const { return edge_; }

  /// Time at which the scene's own motions end, not counting those of the view.
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
  PopoverGrid::Under gridUnder() const;
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
  Animated<double> lens_, rested_, label_, labelOverDots_;
  FadedValue<QString> sentence_;
  FadedValue<Under> under_;
  QString quitName_;  // the last one asked about; kept while its question fades out
  bool labelReady_ = false;
  std::array<ControlState, popoverControlCount> controls_;
  WordsPicture restingWords_;
};

}  // namespace vorli::ui
