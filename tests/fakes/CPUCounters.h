#pragma once

#include "ports/CPUCounters.h"

#include <algorithm>
#include <vector>

namespace vorli::fakes {

/// An idle machine with four processors, unless a test changes it.
class CPUCounters final : public ports::CPUCounters {
 public:
  std::optional<ports::CPUTicks> readTicks() override { return ticks; }

  void readLoadAverages(std::span<double, 3> averages) override {
    std::copy_n(loadAverages.begin(), std::min<std::size_t>(loadAverages.size(), 3), averages.begin());
  }

  int activeProcessorCount() override { return activeProcessors; }
  int processorCount() override {
    ++processorCountReads;
    return processors;
  }

  std::optional<ports::CPUTicks> ticks = ports::CPUTicks{};
  std::vector<double> loadAverages{0.0, 0.0, 0.0};  // shorter than three: the rest could not be read
  int activeProcessors = 4;
  int processors = 4;
  int processorCountReads = 0;
};

}  // namespace vorli::fakes
