#pragma once

#include "base/Scheduler.h"
#include "base/SubscriberList.h"
#include "ports/GlowOverlay.h"
#include "ui/glow/GlowFrames.h"
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

/// The glow on an X11 desktop: four bands that exist only while there is light and a compositor, which may
/// start and stop at any time.
class GlowOverlay final : public ports::GlowOverlay, private QAbstractNativeEventFilter {
 public:
  /// `windowAbove` returns the program's window that the glow must not cover, or 0. Both references must
  /// outlive this object.
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

  /// Number of frames requested since the start; constant while the picture is at rest.
  std::uint64_t frameCount() const { return frames_.count(); }

 private:
  void watchScreens();
  std::optional<double> show(const ports::GlowPicture& picture);
  void compositingChanged();
  void raise();
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  Scheduler& scheduler_;
  ManagerSelections& selections_;
  std::function<std::uint32_t()> windowAbove_;
  GlowFrames frames_;
  Subscription compositing_;
  SubscriberList<> screensChanged_;
  QObject context_;  // for Qt's connections

  QRect screen_;
  int depth_ = 0;
  Scheduler::TimerId settling_ = 0;
  std::unique_ptr<GlowBands> bands_;
};

}  // namespace vorli::ui
