#include "sampling/RingProgress.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace vorli {

namespace {

// Rates at which a signal reaches its maximum, in pages per second.
constexpr double worstDecompressionRate = 10000.0;
constexpr double worstSwapinRate = 500.0;
constexpr double worstPageoutRate = 2000.0;

double baseOf(MemoryPressureLevel level) {
  switch (level) {
    case MemoryPressureLevel::normal:
      return 0.05;
    case MemoryPressureLevel::warning:
      return 0.55;
    case MemoryPressureLevel::critical:
      return 0.85;
  }
  return 0.05;
}

// The difference wraps around, so a counter that ran backwards sets its signal to the maximum for one tick.
double rateScore(std::uint64_t earlier, std::uint64_t later, double seconds, double worstRate) {
  return std::min(static_cast<double>(later - earlier) / seconds / worstRate, 1.0);
}

double worstRateScore(const MemorySnapshot& earlier, const MemorySnapshot& later) {
  const double seconds = later.capturedAt - earlier.capturedAt;
  if (!(seconds > 0.0)) return 0.0;
  return std::max(
      {rateScore(earlier.decompressionsCumulative, later.decompressionsCumulative, seconds,
                 worstDecompressionRate),
       rateScore(earlier.swapinsCumulative, later.swapinsCumulative, seconds, worstSwapinRate),
       rateScore(earlier.pageoutsCumulative, later.pageoutsCumulative, seconds, worstPageoutRate)});
}

double loadScore(double load, int activeProcessorCount) {
  const double cores = std::max(static_cast<double>(activeProcessorCount), 1.0);
  return std::clamp((load - cores) / cores, 0.0, 1.0);
}

// The score is linear between these points. A moderately busy processor barely counts; the last tenth of
// usage moves the ring by a third.
struct CpuPoint {
  double usage;
  double score;
};
constexpr std::array<CpuPoint, 5> cpuScale{{{0.0, 0.0}, {0.5, 0.05}, {0.75, 0.3}, {0.9, 0.675}, {1.0, 1.0}}};

double cpuScore(double usage) {
  const double bounded = std::clamp(usage, cpuScale.front().usage, cpuScale.back().usage);
  const auto* const upper =
      std::ranges::lower_bound(cpuScale.begin() + 1, cpuScale.end() - 1, bounded, {}, &CpuPoint::usage);
  const auto* const lower = upper - 1;
  return lower->score +
         (bounded - lower->usage) * (upper->score - lower->score) / (upper->usage - lower->usage);
}

double thermalScore(ThermalState state) {
  switch (state) {
    case ThermalState::nominal:
      return 0.0;
    case ThermalState::fair:
      return 0.3;
    case ThermalState::serious:
      return 0.7;
    case ThermalState::critical:
      return 1.0;
  }
  return 0.0;
}

}  // namespace

double ringProgressTarget(const RingSignals& signals) {
  if (signals.memory.isEmpty()) return 0.0;
  const double rates = signals.previous ? worstRateScore(*signals.previous, signals.memory) : 0.0;
  const double worst = std::max({baseOf(signals.memory.pressureLevel), rates,
                                 loadScore(signals.load, signals.activeProcessorCount),
                                 cpuScore(signals.cpuUsage), thermalScore(signals.thermalState)});
  return std::min(worst, 1.0);
}

double smoothedRingProgress(double current, double target) {
  // Smooths per tick rather than per second, so that the ring settles quickly while the user is watching.
  if (current < target) return current * 0.45 + target * 0.55;
  return current * 0.85 + target * 0.15;
}

}  // namespace vorli
