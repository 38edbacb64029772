#pragma once

#include "base/OnceReply.h"
#include "base/UniqueFunction.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::ports {

/// A button of a notification.
struct NotificationAction {
  std::string identifier;
  std::string title;
  std::uint32_t options = 0;  // 4: brings the program to the front

  bool operator==(const NotificationAction&) const = default;
};

/// A category of notifications, with its buttons in order.
struct NotificationCategory {
  std::string identifier;
  std::vector<NotificationAction> actions;

  bool operator==(const NotificationCategory&) const = default;
};

/// A notification to show now, without sound. A `passive` one neither lights up the screen nor breaks through
/// "do not disturb".
struct NotificationRequest {
  enum class InterruptionLevel { passive = 0, active = 1 };

  std::string identifier;
  std::string title;
  std::string body;
  InterruptionLevel interruptionLevel = InterruptionLevel::passive;
  std::string categoryIdentifier;

  bool operator==(const NotificationRequest&) const = default;
};

/// The action of a click on the notification itself rather than on a button.
inline constexpr std::string_view notificationDefaultActionIdentifier =
    "com.apple.UNNotificationDefaultActionIdentifier";

/// The user's response to a notification.
struct NotificationResponse {
  std::string actionIdentifier;
  std::string categoryIdentifier;
};

struct NotificationAuthorization {
  bool granted = false;
  std::optional<std::string> error;
};

/// Handles events of the program's notifications. Called on the main thread, never inside a call of the
/// centre.
class NotificationDelegate {
 public:
  virtual ~NotificationDelegate() = default;

  /// Returns how to present a notification while the program is in front: a mask of 2 for sound and 16 for a
  /// banner. Is not called on systems that always show it.
  virtual std::uint32_t presentationOptions() = 0;

  /// Call `completion` once, when the response has been handled.
  virtual void didReceive(NotificationResponse response, UniqueFunction<void()> completion) = 0;
};

/// The desktop's notifications. Main thread; no call blocks. Replies arrive on the main thread, never inside
/// the call, and are dropped when the centre is destroyed.
class UserNotificationCenter {
 public:
  virtual ~UserNotificationCenter() = default;

  /// Sets the delegate, which is not owned; null removes it.
  virtual void setDelegate(NotificationDelegate* delegate) = 0;

  /// Replaces all categories.
  virtual void setNotificationCategories(std::vector<NotificationCategory> categories) = 0;

  /// Asks the user for permission where the system requires it. `options` is a mask of 2 for sound and 4 for
  /// alerts.
  virtual void requestAuthorization(std::uint32_t options, OnceReply<NotificationAuthorization> reply) = 0;

  /// Posts a notification. Error: the system's text.
  virtual void add(NotificationRequest request, OnceReply<std::expected<void, std::string>> reply) = 0;
};

}  // namespace vorli::ports
