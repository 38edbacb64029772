#include "ui/glow/GlowFrames.h"

#include <cmath>
#include <utility>

namespace vorli::ui {
namespace {

constexpr double glowFrameSeconds = 1.0 / 30.0;
// Used while the opacity changes slowly: a breath has about 17 levels in 4.5 seconds.
constexpr double slowGlowFrameSeconds = 1.0 / 10.0;
constexpr double creepingLevels = 1.0;

}  // namespace

GlowFrames::GlowFrames(Scheduler& scheduler, Show show) : scheduler_(scheduler), show_(std::move(show)) {}

GlowFrames::~GlowFrames() {
  scheduler_.cancel(timer_);
}

void GlowFrames::start(Frames frames, double restsAt) {
  scheduler_.cancel(timer_);
  frames_ = std::move(frames);
  restsAt_ = restsAt;
  showNext();
}

void GlowFrames::stop() {
  scheduler_.cancel(std::exchange(timer_, 0));
  frames_ = nullptr;
  shownLevel_ = 0.0;
}

void GlowFrames::showAgain() {
  scheduler_.cancel(timer_);
  showNext();
}

void GlowFrames::showNext() {
  timer_ = 0;
  if (!frames_) return;
  const double now = scheduler_.now();
  const double before = shownLevel_;
  ++count_;
  const auto level = show_(frames_(now));
  shownLevel_ = level.value_or(0.0);
  if (!level || now >= restsAt_) return;
  const bool isCreeping = std::isinf(restsAt_) && std::abs(shownLevel_ - before) <= creepingLevels;
  timer_ = scheduler_.after(isCreeping ? slowGlowFrameSeconds : glowFrameSeconds, [this] { showNext(); });
}

}  // namespace vorli::ui
