#pragma once

#include "ports/GlowOverlay.h"

#include <utility>
#include <vector>

namespace vorli::fakes {

/// A screen that shows what the frames say whenever a test looks.
class GlowOverlay final : public ports::GlowOverlay {
 public:
  bool build(double bandDepthPoints) override {
    builds.push_back(bandDepthPoints);
    return hasMainScreen;
  }
  void animate(Frames frames, double restsAt) override {
    frames_ = std::move(frames);
    restTimes.push_back(restsAt);
  }

  ports::GlowPicture pictureAt(double time) const { return frames_ ? frames_(time) : ports::GlowPicture{}; }

  bool hasMainScreen = true;
  std::vector<double> builds;  // the depth asked for, each time
  std::vector<double> restTimes;

 private:
  Frames frames_;
};

}  // namespace vorli::fakes
