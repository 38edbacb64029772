#pragma once

#include "settings/UserDefaults.h"

namespace vorli {

inline constexpr const char* hasCompletedOnboardingKey = "hasCompletedOnboarding";

/// Key of the build that was launched last. Every build stores it, including those without first steps.
inline constexpr const char* lastLaunchedBuildKey = "vorli.lastLaunchedBuild";

/// True once the user has completed the first steps, in this run or an earlier one.
inline bool hasCompletedOnboarding(const ports::KeyValueStore& defaults) {
  return boolForKey(defaults, hasCompletedOnboardingKey);
}

}  // namespace vorli
