#pragma once

#include "base/Scheduler.h"
#include "base/SubscriberList.h"
#include "ports/GlowOverlay.h"
#include "ui/linux/ManagerSelections.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QRect>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace vorli::ui {

class GlowBands;

/// The glow on an X11 desktop: four bands that are there only while there is light, and only with a
/// compositor, which may come and go.
class GlowOverlay final : public ports::GlowOverlay, private QAbstractNativeEventFilter {
 public:
  /// `windowAbove` names the program's window that the glow does not lie over; 0 when it has none. Both
  /// references outlive this.
  GlowOverlay(Scheduler& scheduler, ManagerSelections& selections,
              std::function<std::uint32_t()> windowAbove);
  ~GlowOverlay() override;

  std::optional<ports::ScreenFrame> mainScreen() override;
  Subscription subscribeToScreens(std::function<void()> handler) override;
  bool build(double bandDepthPoints) override;
  ports::ScreenFrame frame() const override;
  void setFrame(const ports::ScreenFrame& frame) override;
  void animate(Frames frames, double restsAt) override;
  void remove() override;

  /// Frames asked for since the start: at rest it stands still.
  std::uint64_t frameCount() const { return frameCount_; }

 private:
  void watchScreens();
  void showFrame();
  void show(const ports::GlowPicture& picture);
  void compositingChanged();
  void raise();
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  Scheduler& scheduler_;
  ManagerSelections& selections_;
  std::function<std::uint32_t()> windowAbove_;
  Subscription compositing_;
  SubscriberList<> screensChanged_;
  QObject context_;  // of Qt's connections

  QRect screen_;
  int depth_ = 0;
  Frames frames_;
  double restsAt_ = -1.0;
  int shownLevel_ = 0;
  Scheduler::TimerId timer_ = 0;
  Scheduler::TimerId settling_ = 0;
  std::uint64_t frameCount_ = 0;
  std::unique_ptr<GlowBands> bands_;
};

}  // namespace vorli::ui
