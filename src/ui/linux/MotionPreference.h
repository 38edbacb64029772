#pragma once

#include "base/SubscriberList.h"
#include "ports/MotionPreference.h"
#include "ui/linux/GtkPreference.h"
#include "ui/linux/ManagerSelections.h"

namespace vorli::ui {

/// The switch for animations in the settings that the desktop publishes to X11 programs, else in the user's
/// own file.
class MotionPreference final : public ports::MotionPreference {
 public:
  explicit MotionPreference(ManagerSelections& selections, GtkPreference gtk = GtkPreference::ofThisUser());

  bool isReduced() const override { return reduced_; }
  Subscription subscribe(std::function<void()> handler) override { return changed_.add(std::move(handler)); }

 private:
  bool derive() const;
  void update();

  ManagerSelections& selections_;
  const GtkPreference gtk_;
  bool reduced_ = false;
  SubscriberList<> changed_;
  Subscription settings_;
};

}  // namespace vorli::ui
