#pragma once

#include "base/Scheduler.h"
#include "ports/UserNotificationCenter.h"

#include <memory>

@class VorliNotificationReceiver;

namespace vorli::machost {

/// The system's notifications. The program must run from its bundle, because the system identifies it by the
/// bundle's identifier.
class UserNotificationCenter final : public ports::UserNotificationCenter {
 public:
  explicit UserNotificationCenter(Scheduler& scheduler);
  ~UserNotificationCenter() override;
  UserNotificationCenter(const UserNotificationCenter&) = delete;
  UserNotificationCenter& operator=(const UserNotificationCenter&) = delete;

  void setDelegate(ports::NotificationDelegate* delegate) override;
  void setNotificationCategories(std::vector<ports::NotificationCategory> categories) override;
  void requestAuthorization(std::uint32_t options,
                            OnceReply<ports::NotificationAuthorization> reply) override;
  void add(ports::NotificationRequest request, OnceReply<std::expected<void, std::string>> reply) override;

 private:
  struct Life {
    ports::NotificationDelegate* delegate = nullptr;
  };

  Scheduler& scheduler_;
  const std::shared_ptr<Life> life_ = std::make_shared<Life>();
  VorliNotificationReceiver* const receiver_;  // the system holds it weakly
};

}  // namespace vorli::machost
