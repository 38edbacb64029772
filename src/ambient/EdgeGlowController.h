#pragma once

#include "ambient/ClearState.h"
#include "ambient/EdgeGlowView.h"
#include "base/Scheduler.h"
#include "base/SharedInstance.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "ports/GlowOverlay.h"
#include "ports/MotionPreference.h"
#include "ports/Workspace.h"
#include "sampling/SystemMonitor.h"

#include <optional>
#include <vector>

namespace vorli {

/// What the edge glow works with.
struct EdgeGlowNeeds {
  Scheduler& scheduler;
  ports::GlowOverlay& window;
  ports::Workspace& workspace;
  ports::MotionPreference& motion;
  const SystemMonitor& systemMonitor;
  const ClearState& clearState;
};

/// Lights the edges of the screen that the user works on while the ring stands at 0.9 or above. Main thread.
class EdgeGlowController : public SharedInstance<EdgeGlowController> {
 public:
  explicit EdgeGlowController(const EdgeGlowNeeds& needs);

  bool enabled() const { return enabled_; }
  /// Nothing when it is enabled already. Without a screen there is no light until it is enabled anew.
  void enable();
  void disable();

  const EdgeGlowState& state() const { return state_; }

 private:
  void buildWindow();
  void followState();
  void observeScreens();
  void show();
  void animate();
  void preferenceChanged();
  EdgeGlowView::Breathing breathing() const;
  void checkScreenSoon();
  Task<> checkScreen();

  EdgeGlowNeeds needs_;
  bool enabled_ = false;
  bool hasWindow_ = false;
  EdgeGlowState state_;
  std::optional<EdgeGlowView> view_;
  double animatedUntil_ = -1.0;             // what the window was told
  std::vector<Subscription> cancellables_;  // the monitor and the calm
  std::vector<Subscription> observers_;     // screens, applications and workspaces
  TaskScope tasks_;
};

}  // namespace vorli
