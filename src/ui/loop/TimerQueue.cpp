#include "ui/loop/TimerQueue.h"

#include "base/Assert.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vorli::ui {
namespace {

// Returns the roundest moment of the monotonic clock in due..due + allowance: programs that do the same wake
// the processor together.
double roundMoment(double due, double allowance) {
  constexpr std::array grids{1.0, 0.5, 0.25, 0.1, 0.05, 0.025};
  for (const double grid : grids) {
    const double moment = std::ceil(due / grid) * grid;
    if (moment <= due + allowance) return std::max(moment, due);
  }
  return due;
}

}  // namespace

Scheduler::TimerId TimerQueue::add(double now, double seconds, Scheduler::Work work,
                                   Scheduler::Precision precision) {
  VORLI_ASSERT(!std::isnan(seconds));
  const double delay = std::max(seconds, 0.0);
  const double due = now + delay;
  const double wake = precision == Scheduler::Precision::exact ? due : roundMoment(due, delay / 20.0);
  const auto id = ++lastId_;
  entries_.emplace(std::pair(due, id), Entry{wake, std::move(work)});
  return id;
}

void TimerQueue::cancel(Scheduler::TimerId timer) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [timer](const auto& entry) { return entry.first.second == timer; });
  if (found != entries_.end()) entries_.extract(found);
}

std::optional<double> TimerQueue::nextWake() const {
  const auto earliest = std::min_element(
      entries_.begin(), entries_.end(),
      [](const auto& left, const auto& right) { return left.second.wake < right.second.wake; });
  if (earliest == entries_.end()) return std::nullopt;
  return earliest->second.wake;
}

std::optional<Scheduler::Work> TimerQueue::takeDue(double now, Scheduler::TimerId newest) {
  for (auto entry = entries_.begin(); entry != entries_.end() && entry->first.first <= now; ++entry) {
    if (entry->first.second > newest) continue;
    auto node = entries_.extract(entry);
    return std::move(node.mapped().work);
  }
  return std::nullopt;
}

}  // namespace vorli::ui
