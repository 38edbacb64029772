#include "daemon/RequestLimits.h"

#include "base/Assert.h"

#include <utility>

namespace vorli::daemon {

namespace {

template <typename Key>
void countDown(std::map<Key, std::size_t>& counts, const Key& key) {
  const auto entry = counts.find(key);
  if (--entry->second == 0) counts.erase(entry);
}

}  // namespace

std::shared_ptr<RequestLimits::Place> RequestLimits::admit() {
  if (state_->inFlight >= mostInFlight) return nullptr;
  return std::shared_ptr<Place>(new Place(state_, {}));
}

std::shared_ptr<RequestLimits::Place> RequestLimits::admitUnidentified(const std::string& caller) {
  if (state_->inFlight >= mostInFlight || state_->unidentified >= mostUnidentified) return nullptr;
  const auto waiting = state_->unidentifiedPerCaller.find(caller);
  if (waiting != state_->unidentifiedPerCaller.end() && waiting->second >= mostUnidentifiedPerCaller)
    return nullptr;
  return std::shared_ptr<Place>(new Place(state_, caller));
}

RequestLimits::Place::Place(std::shared_ptr<State> state, std::string unidentifiedCaller)
    : state_(std::move(state)), unidentifiedCaller_(std::move(unidentifiedCaller)) {
  ++state_->inFlight;
  if (unidentifiedCaller_.empty()) return;
  ++state_->unidentified;
  ++state_->unidentifiedPerCaller[unidentifiedCaller_];
}

void RequestLimits::Place::leaveUnidentified() {
  if (unidentifiedCaller_.empty()) return;
  --state_->unidentified;
  countDown(state_->unidentifiedPerCaller, std::exchange(unidentifiedCaller_, {}));
}

RequestLimits::Place::~Place() {
  --state_->inFlight;
  leaveUnidentified();
  if (user_) countDown(state_->perUser, *user_);
  if (state_->onRelease) state_->onRelease();
}

bool RequestLimits::Place::assignTo(UserId user) {
  VORLI_ASSERT(!user_);
  leaveUnidentified();
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
