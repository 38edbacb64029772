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
  return count(state_->privileged, mostPrivilegedPerUser);
}

bool RequestLimits::Place::countOther() {
  return count(state_->others, mostOthersPerUser);
}

bool RequestLimits::Place::count(Recent& recent, std::size_t most) {
  VORLI_ASSERT(user_);
  const double now = state_->clock.now();
  forgetOld(recent, now);
  auto& count = recent.counts[*user_];
  if (count >= most) return false;
  ++count;
  recent.starts.push_back({now, *user_});
  return true;
}

void RequestLimits::forgetOld(Recent& recent, double now) {
  while (!recent.starts.empty() && recent.starts.front().time <= now - windowSeconds) {
    const auto count = recent.counts.find(recent.starts.front().user);
    if (--count->second == 0) recent.counts.erase(count);
    recent.starts.pop_front();
  }
}

}  // namespace vorli::daemon
