#pragma once

#include <functional>
#include <string_view>
#include <vector>

namespace vorli {

/// One step of the launch.
struct LaunchStep {
  std::string_view name;
  std::function<void()> take;
};

/// All steps of the launch, in the order in which they are taken.
using LaunchSequence = std::vector<LaunchStep>;

}  // namespace vorli
