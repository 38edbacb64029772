#pragma once

#include "ports/SerialQueue.h"

#include <deque>
#include <utility>

namespace vorli::fakes {

/// Keeps work until a test runs it.
class SerialQueue final : public ports::SerialQueue {
 public:
  void post(Work work) override { waiting.push_back(std::move(work)); }

  void runAll() {
    while (!waiting.empty()) {
      auto work = std::move(waiting.front());
      waiting.pop_front();
      work();
    }
  }

  std::deque<Work> waiting;
};

}  // namespace vorli::fakes
