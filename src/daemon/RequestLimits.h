#pragma once

#include "base/Scheduler.h"
#include "daemon/Request.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace vorli::daemon {

/// Keeps one caller from taking the daemon away from the others. Main thread.
class RequestLimits {
 public:
  static constexpr std::size_t mostInFlight = 64;
  static constexpr std::size_t mostInFlightPerUser = 8;
  /// The bus's word on a caller waits behind all that it sends us before, so one who sends much could fill
  /// every place before it is known who that is.
  static constexpr std::size_t mostUnidentified = 32;
  static constexpr std::size_t mostUnidentifiedPerCaller = 8;
  static constexpr std::size_t mostPrivilegedPerUser = 20;
  static constexpr double privilegedWindowSeconds = 10.0;

  explicit RequestLimits(const Scheduler& clock) : state_(std::make_shared<State>(clock)) {}

  /// One place among the requests in flight, given back when its last holder lets go.
  class Place;

  /// Null when all places are taken.
  [[nodiscard]] std::shared_ptr<Place> admit();
  /// For a caller whose user is yet to be found out. Null also when too many such wait, or too many of this
  /// caller's.
  [[nodiscard]] std::shared_ptr<Place> admitUnidentified(const std::string& caller);

  std::size_t inFlight() const { return state_->inFlight; }
  /// Called whenever a place is given back.
  void onRelease(std::function<void()> handler) { state_->onRelease = std::move(handler); }

 private:
  struct State {
    explicit State(const Scheduler& clock) : clock(clock) {}

    const Scheduler& clock;
    std::size_t inFlight = 0;
    std::size_t unidentified = 0;
    std::map<std::string, std::size_t> unidentifiedPerCaller;
    std::map<UserId, std::size_t> perUser;
    /// Start times of each user's privileged requests within the window.
    std::map<UserId, std::deque<double>> recent;
    std::function<void()> onRelease;
  };

  static void forgetOld(State& state);

  std::shared_ptr<State> state_;
};

class RequestLimits::Place {
 public:
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place();

  /// Counts the place on the user's account, once. False when the user has as many as are allowed.
  [[nodiscard]] bool assignTo(UserId user);
  /// Notes a privileged request of that user. False when there were too many lately; those do not count.
  [[nodiscard]] bool countPrivileged();

 private:
  friend class RequestLimits;
  Place(std::shared_ptr<State> state, std::string unidentifiedCaller);

  void leaveUnidentified();

  std::shared_ptr<State> state_;
  /// Empty once the user is known.
  std::string unidentifiedCaller_;
  std::optional<UserId> user_;
};

}  // namespace vorli::daemon
