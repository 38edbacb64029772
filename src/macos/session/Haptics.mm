#include "macos/session/Haptics.h"

#import <AppKit/AppKit.h>

namespace vorli::machost {

static_assert(static_cast<int>(ports::FeedbackPattern::generic) == NSHapticFeedbackPatternGeneric);
static_assert(static_cast<int>(ports::PerformanceTime::now) == NSHapticFeedbackPerformanceTimeNow);

void Haptics::performFeedbackPattern(ports::FeedbackPattern pattern, ports::PerformanceTime time) {
  [NSHapticFeedbackManager.defaultPerformer
      performFeedbackPattern:static_cast<NSHapticFeedbackPattern>(pattern)
             performanceTime:static_cast<NSHapticFeedbackPerformanceTime>(time)];
}

}  // namespace vorli::machost
