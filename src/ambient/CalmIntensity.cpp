#include "ambient/CalmIntensity.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vorli {
namespace {

constexpr double dialInterval = 0.25;
constexpr double displayInterval = CalmCeremony::stepSeconds;

// A smaller change moves no component of a colour by more than one of its 256 levels.
constexpr double leastVisibleChange = 1.0 / 256.0;

}  // namespace

double CalmIntensity::get() const {
  return ceremony_ ? ceremony_->valueAt(scheduler_.now()) : held_;
}

CalmIntensity& CalmIntensity::operator=(double value) {
  held_ = value;
  ceremony_.reset();
  publish();
  return *this;
}

void CalmIntensity::follow(const CalmCeremony& ceremony) {
  ceremony_ = ceremony;
  published_.reset();
  arm();
}

Subscription CalmIntensity::subscribe(CalmPace pace, Handler handler) {
  auto subscription = subscribeToChanges(pace, handler);
  handler(get());
  return subscription;
}

Subscription CalmIntensity::subscribeToChanges(CalmPace pace, Handler handler) {
  auto subscription = subscribers(pace).add(std::move(handler));
  arm();
  return subscription;
}

SubscriberList<double>& CalmIntensity::subscribers(CalmPace pace) {
  return pace == CalmPace::dial ? atDialPace_ : atDisplayPace_;
}

// A subscriber may start another ceremony or assign a value, so the next wake-up is armed before them.
void CalmIntensity::publish() {
  const double value = get();
  published_ = value;
  arm();
  atDisplayPace_.deliver(value);
  atDialPace_.deliver(value);
}

void CalmIntensity::arm() {
  scheduler_.cancel(std::exchange(timer_, 0));
  if (!ceremony_ || (atDialPace_.empty() && atDisplayPace_.empty())) return;
  const double now = scheduler_.now();
  if (published_ && ceremony_->isOverAt(now)) {
    ceremony_.reset();
    held_ = 0.0;
    return;
  }
  const double wake = published_ ? nextVisibleChange(now) : now;
  timer_ = scheduler_.after(wake - now, [this] {
    timer_ = 0;
    publish();
  });
}

// Time of the next step at which a subscriber can show another picture.
double CalmIntensity::nextVisibleChange(double now) const {
  const double interval = atDisplayPace_.empty() ? dialInterval : displayInterval;
  const double latest = ceremony_->turnsAfter(now);
  double next = now + interval;
  while (next < latest && std::abs(ceremony_->valueAt(next) - *published_) < leastVisibleChange)
    next += interval;
  return std::min(next, latest);
}

}  // namespace vorli
