#pragma once

#include "base/Scheduler.h"
#include "base/Task.h"

#include <memory>
#include <optional>
#include <utility>

namespace vorli {

/// The outcome of a flow: its value, and how often and when it continued.
template <typename T>
struct Outcome {
  std::optional<T> value;
  int resumes = 0;
  double at = 0.0;
};

template <typename T>
Task<> collect(Task<T> task, std::shared_ptr<Outcome<T>> outcome, const Scheduler* clock) {
  outcome->value = co_await std::move(task);
  ++outcome->resumes;
  outcome->at = clock->now();
}

}  // namespace vorli
