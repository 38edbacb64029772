#include "daemon/SingleFlight.h"

#include <memory>
#include <utility>

namespace vorli::daemon {

void SingleFlight::join(OnceReply<HelperReply> reply, Work work) {
  state_->waiting.push_back(std::move(reply));
  if (std::exchange(state_->running, true)) return;

  work(OnceReply<HelperReply>([weak = std::weak_ptr(state_), &clock = clock_](HelperReply result) {
    const auto state = weak.lock();
    if (!state) return;
    state->running = false;
    state->last = Result{result, clock.now()};
    for (auto& waiting : std::exchange(state->waiting, {})) std::move(waiting)(result);
  }));
}

}  // namespace vorli::daemon
