#pragma once

#include "base/Subscription.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace vorli {

/// The subscribers of one source, called in subscription order. Subscribing and unsubscribing are allowed
/// while a value is being delivered: a new subscriber first receives the next value, and a removed one
/// receives nothing more.
template <typename... Args>
class SubscriberList {
 public:
  using Handler = std::function<void(const Args&...)>;

  Subscription add(Handler handler) {
    const std::uint64_t id = ++state_->lastId;
    state_->entries.push_back(std::make_shared<Entry>(Entry{id, std::move(handler), true}));
    return Subscription([weak = std::weak_ptr<State>(state_), id] {
      if (auto state = weak.lock()) state->remove(id);
    });
  }

  void deliver(const Args&... args) const {
    const auto state = state_;  // keeps the list while a handler destroys its owner
    const auto snapshot = state->entries;
    for (const auto& entry : snapshot) {
      if (state.use_count() == 1) return;  // the source is destroyed, and possibly the value too
      if (entry->active) entry->handler(args...);
    }
  }

  bool empty() const { return state_->entries.empty(); }

 private:
  struct Entry {
    std::uint64_t id;
    Handler handler;
    bool active;
  };
  struct State {
    std::uint64_t lastId = 0;
    std::vector<std::shared_ptr<Entry>> entries;

    void remove(std::uint64_t id) {
      const auto found =
          std::find_if(entries.begin(), entries.end(), [id](const auto& entry) { return entry->id == id; });
      if (found == entries.end()) return;
      // Removed from the list before it is destroyed: its handler may own further subscriptions to this
      // source.
      const auto gone = std::move(*found);
      entries.erase(found);
      gone->active = false;
    }
  };

  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace vorli
