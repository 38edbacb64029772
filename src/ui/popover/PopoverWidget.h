#pragma once

#include "base/Scheduler.h"
#include "ui/WindowSurroundings.h"
#include "ui/popover/PopoverControl.h"
#include "ui/popover/PopoverPainter.h"
#include "ui/popover/PopoverScene.h"

#include <QImage>
#include <QMargins>
#include <QWidget>
#include <array>
#include <cstdint>
#include <functional>

namespace vorli::ui {

/// The popover's window: the card with its shadow on a clear ground, painted only while it is shown and only
/// when its picture changes. Which part of it is card changes as it unfolds; the window stays as it is.
class PopoverWidget final : public QWidget {
 public:
  /// Where the card lies in the window, at the most: the overshoot of the unfurl has room.
  static constexpr QMargins margins{24, 16, 24, 40};

  struct Callbacks {
    std::function<void()> escape;            // the popover is to close
    std::function<void()> left;              // another window has the keyboard
    std::function<void(const QRect&)> card;  // the card has another rectangle, in the window
  };

  PopoverWidget(Scheduler& scheduler, PopoverView& view, Compositing compositing, Callbacks callbacks);
  ~PopoverWidget() override;

  PopoverScene& scene() { return scene_; }

  /// Before the window is shown: the content as it is now, at rest.
  void begin();
  /// After it was told to show: paints its first frame while others bring the window up. Nothing moves before
  /// that frame is seen.
  void paintAhead();
  /// After it has been hidden.
  void end();

  /// The card as it is painted now, and as it is to be when it rests; in the window.
  QRect card() const;
  QRect restingCard() const;

  /// Counted since the window was made.
  std::uint64_t framesPainted() const { return framesPainted_; }
  /// Drops what is kept for painting.
  void forgetPictures() { painter_.forget(); }

 private:
  void paintEvent(QPaintEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  bool event(QEvent* event) override;

  void paint(QPainter& painter, const QRectF& dirty);
  void wake();
  void frame();
  void armNextFrame(double now);
  void releaseControls();
  void makeControls();
  PopoverControl* makeControl(PopoverControlId id, std::function<void()> action);
  void updateControls();
  void placeControls();
  void sayControls();
  void askedToQuit(bool asks);
  QPointF origin() const;
  QPointF restingOrigin() const;
  PopoverControl& control(PopoverControlId id) { return *controls_[static_cast<std::size_t>(id)]; }
  std::string nameAt(std::size_t index) const;

  Scheduler& scheduler_;
  PopoverView& view_;
  const Compositing compositing_;
  const Callbacks callbacks_;
  PopoverScene scene_;
  PopoverPainter painter_;
  PopoverPicture shown_;
  QRect shownCard_;
  PopoverScene::Edge placedEdge_ = PopoverScene::Edge::top;  // for which the controls lie
  QImage ahead_;                                             // the first frame, until it is seen
  bool isSeen_ = false;
  Scheduler::TimerId frameTimer_ = 0;
  double nextFrame_ = 0.0;
  std::uint64_t framesPainted_ = 0;
  bool usesKeyboard_ = false;  // at the last click on a control
  bool asksToQuit_ = false;
  std::array<PopoverControl*, popoverControlCount> controls_{};
  PopoverText* sentence_ = nullptr;
  PopoverText* culprits_ = nullptr;
  PopoverText* banner_ = nullptr;
  PopoverText* question_ = nullptr;
  Subscription content_;
};

}  // namespace vorli::ui
