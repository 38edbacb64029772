#pragma once

#include "base/Scheduler.h"
#include "ui/kit/SpokenText.h"
#include "ui/kit/WindowSurroundings.h"
#include "ui/popover/PopoverControl.h"
#include "ui/popover/PopoverPainter.h"
#include "ui/popover/PopoverScene.h"

#include <QImage>
#include <QMargins>
#include <QWidget>
#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace vorli::ui {

/// The popover's window: the card with its shadow on a transparent background. It is painted only while it is
/// shown and only when its picture changes. The card moves within the window as it unfolds; the window itself
/// does not change.
class PopoverWidget final : public QWidget {
 public:
  /// Margins around the largest card; they leave room for the overshoot when it unfolds.
  static constexpr QMargins margins{24, 16, 24, 40};

  struct Callbacks {
    std::function<void()> escape;            // asks to close the popover
    std::function<void()> left;              // another window has received the keyboard focus
    std::function<void(const QRect&)> card;  // the card has a new rectangle in the window
  };

  PopoverWidget(Scheduler& scheduler, PopoverView& view, Compositing compositing, Callbacks callbacks);
  ~PopoverWidget() override;

  PopoverScene& scene() { return scene_; }

  /// Loads what the first picture would otherwise have to load, above all fonts and glyphs.
  void prepare();
  /// Takes over the current content, at rest. Must be called before the window is shown.
  void begin();
  /// Paints the first frame while the X server and the window manager bring the window up. Must be called
  /// after show(); nothing moves before that frame is seen.
  void paintAhead();
  /// Must be called after the window has been hidden.
  void end();

  /// The card as it is painted now, and as it will be at rest, in coordinates of the window.
  QRect card() const;
  QRect restingCard() const;

  /// Number of frames painted since the window was created.
  std::uint64_t framesPainted() const { return framesPainted_; }
  /// Number of profiles of the light computed so far.
  std::size_t lightProfiles() const { return painter_.lightProfiles(); }
  /// Drops the caches of the painter.
  void forgetPictures() { painter_.forget(); }

 private:
  void paintEvent(QPaintEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  bool event(QEvent* event) override;

  void paint(QPainter& painter, const QRectF& dirty);
  QRect partAhead() const;
  void wake();
  void followContent();
  void frame();
  void armNextFrame(double now);
  double displaySeconds() const;
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
  void nameClicked(PopoverControlId id);
  std::string nameAt(std::size_t index) const;
  QString paintedName(PopoverControlId id) const;

  Scheduler& scheduler_;
  PopoverView& view_;
  const Compositing compositing_;
  const Callbacks callbacks_;
  PopoverScene scene_;
  PopoverPainter painter_;
  PopoverPicture shown_;
  QRect shownCard_;
  PopoverScene::Edge placedEdge_ = PopoverScene::Edge::top;  // the edge that the controls were placed for
  QImage ahead_;                                             // the first frame, until it is seen
  QPoint aheadAt_;                                           // its place in the window
  bool isSeen_ = false;
  Scheduler::TimerId frameTimer_ = 0;
  double nextFrame_ = 0.0;
  std::uint64_t framesPainted_ = 0;
  bool usesKeyboard_ = false;  // at the last click on a control
  bool asksToQuit_ = false;
  QString pressedName_;  // painted under the press that began last; empty when it was on no name
  std::array<PopoverControl*, popoverControlCount> controls_{};
  SpokenText* sentence_ = nullptr;
  SpokenText* culprits_ = nullptr;
  SpokenText* banner_ = nullptr;
  SpokenText* question_ = nullptr;
  Subscription content_;
};

}  // namespace vorli::ui
