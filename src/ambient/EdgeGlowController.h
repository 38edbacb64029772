#pragma once

#include "ambient/ClearState.h"
#include "ambient/EdgeGlowView.h"
#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "ports/GlowOverlay.h"
#include "ports/MotionPreference.h"
#include "ports/Workspace.h"
#include "sampling/SystemMonitor.h"

#include <optional>
#include <vector>

namespace vorli {

/// Dependencies of the edge glow.
struct EdgeGlowNeeds {
  Scheduler& scheduler;
  ports::GlowOverlay& window;
  ports::Workspace& workspace;
  ports::MotionPreference& motion;
  const SystemMonitor& systemMonitor;
  ClearState& clearState;
};

/// Lights the edges of the screen that the user works on while the ring is at 0.9 or above. Main thread.
class EdgeGlowController {
 public:
  explicit EdgeGlowController(const EdgeGlowNeeds& needs);
  ~EdgeGlowController();
  EdgeGlowController(const EdgeGlowController&) = delete;
  EdgeGlowController& operator=(const EdgeGlowController&) = delete;

  bool enabled() const { return enabled_; }
  /// Does nothing when already enabled. Without a screen there is no light until it is disabled and enabled
  /// again.
  void enable();
  void disable();

  const EdgeGlowState& state() const { return state_; }

 private:
  void buildWindow();
  void followState();
  void followCalm();
  void observeScreens();
  void show();
  void animate();
  void extendAt(double time);
  void preferenceChanged();
  EdgeGlowView::Breathing breathing() const;
  void checkScreenSoon();
  Task<> checkScreen();

  EdgeGlowNeeds needs_;
  bool enabled_ = false;
  bool hasWindow_ = false;
  EdgeGlowState state_;
  std::optional<EdgeGlowView> view_;
  std::optional<double> animatedUntil_;     // end time last given to the window; empty for a new window
  Scheduler::TimerId extension_ = 0;        // timer that gives the window a later one
  std::vector<Subscription> cancellables_;  // the monitor
  std::optional<CalmPace> calmPace_;
  Subscription calm_;
  std::vector<Subscription> observers_;  // screens, applications and workspaces
  TaskScope tasks_;
};

}  // namespace vorli
