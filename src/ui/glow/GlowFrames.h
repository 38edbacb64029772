#pragma once

#include "base/Scheduler.h"
#include "ports/GlowOverlay.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace vorli::ui {

/// Shows the frames of a glow one after another until it is at rest, fewer of them while it hardly changes.
class GlowFrames {
 public:
  using Frames = ports::GlowOverlay::Frames;
  /// Shows a picture and returns the shown opacity in visible levels, of which 255 is full. Empty when
  /// nothing can be shown: no further frame comes until `showAgain`.
  using Show = std::function<std::optional<double>(const ports::GlowPicture&)>;

  /// `scheduler` must outlive this object.
  GlowFrames(Scheduler& scheduler, Show show);
  ~GlowFrames();
  GlowFrames(const GlowFrames&) = delete;
  GlowFrames& operator=(const GlowFrames&) = delete;

  /// See `ports::GlowOverlay::animate`.
  void start(Frames frames, double restsAt);
  void stop();
  /// Shows the picture of now once more, if there is one, and continues from there.
  void showAgain();

  /// Number of frames requested so far; constant while the picture is at rest.
  std::uint64_t count() const { return count_; }

 private:
  void showNext();

  Scheduler& scheduler_;
  const Show show_;
  Frames frames_;
  double restsAt_ = -1.0;
  double shownLevel_ = 0.0;
  Scheduler::TimerId timer_ = 0;
  std::uint64_t count_ = 0;
};

}  // namespace vorli::ui
