#pragma once

#include "base/SubscriberList.h"
#include "ports/MotionPreference.h"

#include <utility>

namespace vorli::fakes {

/// A desktop whose preference for less movement a test sets.
class MotionPreference final : public ports::MotionPreference {
 public:
  bool isReduced() const override { return reduced_; }
  Subscription subscribe(std::function<void()> handler) override { return changed_.add(std::move(handler)); }

  void setReduced(bool reduced) {
    reduced_ = reduced;
    changed_.deliver();
  }

 private:
  bool reduced_ = false;
  SubscriberList<> changed_;
};

}  // namespace vorli::fakes
