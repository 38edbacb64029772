#pragma once

#include "base/SubscriberList.h"
#include "ports/GlowOverlay.h"

#include <utility>
#include <vector>

namespace vorli::fakes {

/// A screen that shows the current frame whenever a test looks.
class GlowOverlay final : public ports::GlowOverlay {
 public:
  std::optional<ports::ScreenFrame> mainScreen() override {
    if (!hasMainScreen) return std::nullopt;
    return screen;
  }
  Subscription subscribeToScreens(std::function<void()> handler) override {
    return screensChanged_.add(std::move(handler));
  }
  bool build(double bandDepthPoints) override {
    builds.push_back(bandDepthPoints);
    isBuilt = hasMainScreen;
    frame_ = screen;
    return hasMainScreen;
  }
  ports::ScreenFrame frame() const override { return frame_; }
  void setFrame(const ports::ScreenFrame& frame) override {
    frame_ = frame;
    ++moves;
  }
  void animate(Frames frames, double restsAt) override {
    frames_ = std::move(frames);
    restTimes.push_back(restsAt);
  }
  void remove() override {
    isBuilt = false;
    frames_ = nullptr;
    ++removals;
  }

  ports::GlowPicture pictureAt(double time) const { return frames_ ? frames_(time) : ports::GlowPicture{}; }
  void tellScreens() { screensChanged_.deliver(); }
  bool isObserved() const { return !screensChanged_.empty(); }

  bool hasMainScreen = true;
  ports::ScreenFrame screen{0.0, 0.0, 1920.0, 1080.0};
  std::vector<double> builds;  // every requested depth
  bool isBuilt = false;
  int moves = 0;
  int removals = 0;
  std::vector<double> restTimes;

 private:
  Frames frames_;
  ports::ScreenFrame frame_;
  SubscriberList<> screensChanged_;
};

}  // namespace vorli::fakes
