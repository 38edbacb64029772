#pragma once

#include "ports/MotionPreference.h"

namespace vorli::machost {

/// The setting "Reduce motion".
class MotionPreference final : public ports::MotionPreference {
 public:
  bool isReduced() const override;
  Subscription subscribe(std::function<void()> handler) override;
};

}  // namespace vorli::machost
