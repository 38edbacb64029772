#include "bench/Machine.h"

#include <string>
#include <unistd.h>

namespace vorli::bench {

namespace {

// The number of running applications on a full desktop; the first one is this process.
constexpr std::int32_t applicationCount = 12;

std::vector<ports::RunningApplication> applications() {
  std::vector<ports::RunningApplication> running;
  for (std::int32_t i = 0; i < applicationCount; ++i) {
    const auto name = "Application " + std::to_string(i);
    running.push_back({.processIdentifier = getpid() - i,
                       .localizedName = SharedText(name),
                       .bundleIdentifier = SharedText("org.example." + name),
                       .activationPolicy = ports::ActivationPolicy::regular,
                       .icon = {SharedText(name)}});
  }
  return running;
}

}  // namespace

Machine::Machine(ports::Workspace* workspace)
    : workspace_(workspace ? *workspace : fullDesktop_),
      monitor_({scheduler_, calendar_, memory_, cpu_, thermal_, power_, processes_, workspace_, bundle_,
                background_},
               settings_, idleTracker_) {
  fullDesktop_.applications = applications();
  fullDesktop_.windowOwners = {getpid()};
}

void Machine::enumerate() {
  enumerator_.enumerate();
}

}  // namespace vorli::bench
