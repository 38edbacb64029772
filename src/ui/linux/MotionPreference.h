#pragma once

#include "base/SubscriberList.h"
#include "ports/MotionPreference.h"
#include "ui/linux/ManagerSelections.h"

namespace vorli::ui {

/// The switch for animations among the settings that the desktop publishes to X11 programs.
class MotionPreference final : public ports::MotionPreference {
 public:
  explicit MotionPreference(ManagerSelections& selections);

  bool isReduced() const override { return reduced_; }
  Subscription subscribe(std::function<void()> handler) override { return changed_.add(std::move(handler)); }

 private:
  bool derive() const;
  void update();

  ManagerSelections& selections_;
  bool reduced_ = false;
  SubscriberList<> changed_;
  Subscription settings_;
};

}  // namespace vorli::ui
