#include "bench/Machine.h"

#include <string>
#include <unistd.h>

namespace vorli::bench {

namespace {

// A full desktop: so many running applications, the first of them this process.
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

Machine::Machine()
    : monitor_({scheduler_, calendar_, memory_, cpu_, thermal_, power_, processes_, workspace_, bundle_,
                background_},
               settings_, idleTracker_) {
  workspace_.applications = applications();
  workspace_.windowOwners = {getpid()};
}

void Machine::enumerate() {
  enumerator_.enumerate();
}

}  // namespace vorli::bench
