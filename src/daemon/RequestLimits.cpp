#include "daemon/RequestLimits.h"

#include "base/Assert.h"

namespace vorli::daemon {

std::shared_ptr<RequestLimits::Place> RequestLimits::admit() {
  if (state_->inFlight >= mostInFlight) return nullptr;
  ++state_->inFlight;
  return std::shared_ptr<Place>(new Place(state_));
}

RequestLimits::Place::~Place() {
  --state_->inFlight;
  if (user_) {
    const auto account = state_->perUser.find(*user_);
    if (--account->second == 0) state_->perUser.erase(account);
  }
  if (state_->onRelease) state_->onRelease();
}

bool RequestLimits::Place::assignTo(UserId user) {
  VORLI_ASSERT(!user_);
  auto& count = state_->perUser[user];
  if (count >= mostInFlightPerUser) return false;
  ++count;
  user_ = user;
  return true;
}

bool RequestLimits::Place::countPrivileged() {
  VORLI_ASSERT(user_);
  forgetOld(*state_);
  auto& starts = state_->recent[*user_];
  if (starts.size() >= mostPrivilegedPerUser) return false;
  starts.push_back(state_->clock.now());
  return true;
}

// All users at once, so that the list of those who once called does not grow.
void RequestLimits::forgetOld(State& state) {
  const double oldest = state.clock.now() - privilegedWindowSeconds;
  for (auto& [user, starts] : state.recent)
    while (!starts.empty() && starts.front() <= oldest) starts.pop_front();
  std::erase_if(state.recent, [](const auto& entry) { return entry.second.empty(); });
}

}  // namespace vorli::daemon
