#pragma once

#include "base/Scheduler.h"
#include "ports/UserNotificationCenter.h"

#include <string>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// A centre that accepts every notice and has every permission, unless a test changes that.
class UserNotificationCenter final : public ports::UserNotificationCenter {
 public:
  explicit UserNotificationCenter(Scheduler& scheduler) : scheduler_(scheduler) {}

  std::expected<void, std::string> postResult;
  ports::NotificationAuthorization authorization{.granted = true, .error = std::nullopt};
  double replySeconds = 0.0;

  std::vector<ports::NotificationCategory> categories;
  std::vector<ports::NotificationRequest> posted;
  std::vector<std::uint32_t> authorizationOptions;
  ports::NotificationDelegate* delegate = nullptr;
  int completions = 0;

  /// Lets the user press something on a notice of the category.
  void respond(std::string_view category, std::string_view action) {
    scheduler_.post([this, category = std::string(category), action = std::string(action)] {
      if (delegate) delegate->didReceive({action, category}, [this] { ++completions; });
    });
  }

  void setDelegate(ports::NotificationDelegate* newDelegate) override { delegate = newDelegate; }
  void setNotificationCategories(std::vector<ports::NotificationCategory> all) override {
    categories = std::move(all);
  }
  void requestAuthorization(std::uint32_t options,
                            OnceReply<ports::NotificationAuthorization> reply) override {
    authorizationOptions.push_back(options);
    scheduler_.after(replySeconds, [answer = authorization, reply = std::move(reply)]() mutable {
      std::move(reply)(answer);
    });
  }
  void add(ports::NotificationRequest request, OnceReply<std::expected<void, std::string>> reply) override {
    posted.push_back(std::move(request));
    scheduler_.after(replySeconds, [result = postResult, reply = std::move(reply)]() mutable {
      std::move(reply)(std::move(result));
    });
  }

 private:
  Scheduler& scheduler_;
};

}  // namespace vorli::fakes
