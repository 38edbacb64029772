#include "daemon/RequestLimits.h"

#include "base/Assert.h"

#include <utility>

namespace vorli::daemon {

std::shared_ptr<RequestLimits::Place> RequestLimits::admit() {
  return std::shared_ptr<Place>(new Place(state_));
}

RequestLimits::Place::Place(std::shared_ptr<State> state) : state_(std::move(state)) {
  ++state_->unidentified;
}

RequestLimits::Place::~Place() {
  if (user_) {
    --state_->identified;
    const auto count = state_->perUser.find(*user_);
    if (--count->second == 0) state_->perUser.erase(count);
  } else {
    --state_->unidentified;
  }
  if (state_->onRelease) state_->onRelease();
}

RequestLimits::Admission RequestLimits::Place::assignTo(UserId user) {
  VORLI_ASSERT(!user_);
  if (state_->identified >= mostInFlight) return Admission::full;
  const auto count = state_->perUser.find(user);
  if (count != state_->perUser.end() && count->second >= mostInFlightPerUser)
    return Admission::userHasTooMany;
  ++state_->perUser[user];
  ++state_->identified;
  --state_->unidentified;
  user_ = user;
  return Admission::admitted;
}

bool RequestLimits::Place::countPrivileged() {
  VORLI_ASSERT(user_);
  forgetOld(*state_);
  auto& starts = state_->recent[*user_];
  if (starts.size() >= mostPrivilegedPerUser) return false;
  starts.push_back(state_->clock.now());
  return true;
}

// Cleans up all users at once, so that the list of past callers does not grow.
void RequestLimits::forgetOld(State& state) {
  const double oldest = state.clock.now() - privilegedWindowSeconds;
  for (auto& [user, starts] : state.recent)
    while (!starts.empty() && starts.front() <= oldest) starts.pop_front();
  std::erase_if(state.recent, [](const auto& entry) { return entry.second.empty(); });
}

}  // namespace vorli::daemon
