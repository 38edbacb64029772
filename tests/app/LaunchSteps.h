#pragma once

#include "app/AppDelegate.h"

#include <gtest/gtest.h>
#include <string_view>

namespace vorli {

/// Takes all steps of the launch before the step with that name.
inline void takeStepsBefore(AppDelegate& delegate, std::string_view name) {
  for (const auto& step : delegate.launchSequence()) {
    if (step.name == name) return;
    step.take();
  }
  FAIL() << "there is no step " << name;
}

/// Takes one step of the launch.
inline void takeStep(AppDelegate& delegate, std::string_view name) {
  for (const auto& step : delegate.launchSequence())
    if (step.name == name) return step.take();
  FAIL() << "there is no step " << name;
}

}  // namespace vorli
