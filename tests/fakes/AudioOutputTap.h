#pragma once

#include "ports/AudioOutputTap.h"

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// An output that plays what a test puts into `lists`; silent, and running for nobody, until then.
class AudioOutputTap final : public ports::AudioOutputTap {
 public:
  bool listens = true;
  std::optional<ports::AudioTapFailure> failure;
  std::optional<bool> outputRunning = false;
  /// What one window brings: lists of buffers, in order.
  std::vector<std::vector<ports::AudioBuffer>> lists;
  /// Called while a window lasts, as the blocked caller cannot notice anything else.
  std::function<void(double windowSeconds)> duringWindow;

  std::vector<double> windows;
  int outputReads = 0;

  /// One window with a single buffer of these samples, kept for the life of the fake.
  void play(std::vector<float> samples) {
    samples_.push_back(std::move(samples));
    const auto& kept = samples_.back();
    lists.push_back({{kept.data(), kept.size() * sizeof(float)}});
  }
  void silence() { lists.clear(); }

  bool canListen() override { return listens; }

  std::expected<void, ports::AudioTapFailure> listen(double windowSeconds, InputBlock input) override {
    windows.push_back(windowSeconds);
    if (failure) return std::unexpected(*failure);
    for (const auto& list : lists) input(list);
    if (duringWindow) duringWindow(windowSeconds);
    return {};
  }

  std::optional<bool> isOutputRunning() override {
    ++outputReads;
    return outputRunning;
  }

 private:
  std::vector<std::vector<float>> samples_;  // a vector's buffer stays where it is when the outer one grows
};

}  // namespace vorli::fakes
