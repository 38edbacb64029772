#pragma once

#include "base/SubscriberList.h"

#include <functional>
#include <memory>
#include <typeindex>
#include <unordered_map>

namespace vorli {

/// In-process notifications with typed payloads: a notification is a struct, and its type serves as its name.
/// Observers are called inside `post`, in the order in which they subscribed. Main thread only.
class NotificationCenter {
 public:
  NotificationCenter() = default;
  NotificationCenter(const NotificationCenter&) = delete;
  NotificationCenter& operator=(const NotificationCenter&) = delete;

  template <typename Notification>
  Subscription observe(std::function<void(const Notification&)> handler) {
    return channel<Notification>().add(std::move(handler));
  }

  template <typename Notification>
  void post(const Notification& notification) {
    channel<Notification>().deliver(notification);
  }

 private:
  template <typename Notification>
  SubscriberList<Notification>& channel() {
    auto& slot = channels_[std::type_index(typeid(Notification))];
    if (!slot) slot = std::make_shared<SubscriberList<Notification>>();
    return *static_cast<SubscriberList<Notification>*>(slot.get());
  }

  std::unordered_map<std::type_index, std::shared_ptr<void>> channels_;
};

}  // namespace vorli
