#pragma once

#include "base/Scheduler.h"
#include "daemon/Request.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace vorli::daemon {

/// Keeps one user from blocking the daemon for the others. Main thread.
class RequestLimits {
 public:
  /// Places for requests whose user is known. Requests whose user is still being looked up are counted
  /// separately: when their places are used up, no request is refused, but the daemon reads no further call
  /// until one is free.
  static constexpr std::size_t mostInFlight = 64;
  static constexpr std::size_t mostInFlightPerUser = 8;
  static constexpr std::size_t mostUnidentified = 32;
  /// Most requests of one user within the window: those that need authorisation, and the others. The bus may
  /// pass the others on faster than the daemon carries them out; a flood of them would then wait there in
  /// front of the requests of other users. Refusing a request is faster.
  static constexpr std::size_t mostPrivilegedPerUser = 20;
  static constexpr std::size_t mostOthersPerUser = 1000;
  static constexpr double windowSeconds = 10.0;

  explicit RequestLimits(const Scheduler& clock) : state_(std::make_shared<State>(clock)) {}

  /// One place among the requests in flight, released when its last holder is destroyed.
  class Place;
  enum class Admission { admitted, full, userHasTooMany };

  /// Returns a place for a request whose user is not known yet.
  std::shared_ptr<Place> admit();
  /// False while as many users are being looked up as are allowed.
  bool hasRoomForUnidentified() const { return state_->unidentified < mostUnidentified; }

  std::size_t inFlight() const { return state_->unidentified + state_->identified; }
  /// Sets the function to call whenever a place is released.
  void onRelease(std::function<void()> handler) { state_->onRelease = std::move(handler); }

 private:
  /// The requests that started within the window, oldest first, and their number for each user.
  struct Recent {
    struct Start {
      double time;
      UserId user;
    };
    std::deque<Start> starts;
    std::map<UserId, std::size_t> counts;
  };

  struct State {
    explicit State(const Scheduler& clock) : clock(clock) {}

    const Scheduler& clock;
    std::size_t unidentified = 0;
    std::size_t identified = 0;
    std::map<UserId, std::size_t> perUser;
    Recent privileged;
    Recent others;
    std::function<void()> onRelease;
  };

  static void forgetOld(Recent& recent, double now);

  std::shared_ptr<State> state_;
};

class RequestLimits::Place {
 public:
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place();

  /// Assigns the place to the user, once.
  [[nodiscard]] Admission assignTo(UserId user);
  /// Counts a privileged request of that user. False when there were too many recently; refused requests do
  /// not count.
  [[nodiscard]] bool countPrivileged();
  /// Does the same for a request that needs no authorisation.
  [[nodiscard]] bool countOther();

 private:
  friend class RequestLimits;
  bool count(Recent& recent, std::size_t most);

  explicit Place(std::shared_ptr<State> state);

  std::shared_ptr<State> state_;
  std::optional<UserId> user_;
};

}  // namespace vorli::daemon
