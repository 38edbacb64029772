#pragma once

#include "base/Observable.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "polish/PolishFlow.h"
#include "polish/PolishState.h"
#include "sampling/RingState.h"

#include <optional>
#include <string>
#include <string_view>

namespace vorli {

/// The content of the popover: what it shows and says, and what its button does. It is made once and survives
/// every closing. Main thread.
class PopoverView : public PolishState {
 public:
  explicit PopoverView(const PolishServices& services);

  Observable<bool> hovered{false};  // the pointer is over the ring

  /// The button's press, in a task of its own.
  TaskHandle polishPressed();

  /// Whether a press would start a full polish. The button itself is never switched off.
  bool canPolish() const;

  /// The one text under the ring, which is also the button's accessibility value.
  std::string statusSentence() const;
  bool showsReassurance() const;
  bool showsOpenSettingsLink() const;

  std::string_view polishToolTip() const;
  std::string_view polishAccessibilityLabel() const;
  std::string_view polishAccessibilityHint() const;

  /// As it is shown, and as it is read out; empty without a figure.
  std::optional<std::string> percentBanner() const;
  std::optional<std::string> percentBannerAccessibilityText() const;

 private:
  bool isHelperEnabled() const;
  void followRing(double ringProgress);

  HelperManager& helperManager_;
  // Of the monitor; those that come during a polish are seen and dropped.
  double seenProgress_;
  RingState seenState_;
  PolishFlow polish_;
  Subscription ringSubscription_;
  TaskScope tasks_;
};

}  // namespace vorli
