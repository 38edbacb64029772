#pragma once

#include "base/Scheduler.h"
#include "ports/GlowOverlay.h"
#include "ui/glow/GlowFrames.h"

@class NSWindow;
@class VorliGlowView;

namespace vorli::ui {

/// The glow in one borderless window, whose four bands the system composes with the windows below.
class GlowOverlay final : public ports::GlowOverlay {
 public:
  /// `scheduler` must outlive this object.
  explicit GlowOverlay(Scheduler& scheduler);
  ~GlowOverlay() override;
  GlowOverlay(const GlowOverlay&) = delete;
  GlowOverlay& operator=(const GlowOverlay&) = delete;

  std::optional<ports::ScreenFrame> mainScreen() override;
  Subscription subscribeToScreens(std::function<void()> handler) override;
  bool build(double bandDepthPoints) override;
  ports::ScreenFrame frame() const override { return frame_; }
  void setFrame(const ports::ScreenFrame& frame) override;
  void animate(Frames frames, double restsAt) override;
  void remove() override;

 private:
  double show(const ports::GlowPicture& picture);

  NSWindow* window_;
  VorliGlowView* view_;
  ports::ScreenFrame frame_;
  double shownOpacity_ = 0.0;
  GlowFrames frames_;
};

}  // namespace vorli::ui
