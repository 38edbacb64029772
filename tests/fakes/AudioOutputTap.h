#pragma once

#include "ports/AudioOutputTap.h"

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// An output that plays the buffers of `lists`. Until a test fills them, it is silent and not running.
class AudioOutputTap final : public ports::AudioOutputTap {
 public:
  bool listens = true;
  std::optional<ports::AudioTapFailure> failure;
  std::optional<bool> outputRunning = false;
  /// Lists of buffers that a window receives, in order.
  std::vector<std::vector<ports::AudioBuffer>> lists;
  /// Called during a window, in which the caller is blocked.
  std::function<void(double windowSeconds)> duringWindow;

  std::vector<double> windows;
  int outputReads = 0;

  /// Adds a window with a single buffer of these samples, which exists as long as the fake.
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
