#pragma once

#import <ServiceManagement/ServiceManagement.h>
#include <string>
#include <vector>

namespace vorli::macfake {

/// Daemons and login items as the system has them registered.
struct Services {
  SMAppServiceStatus status = SMAppServiceStatusNotRegistered;
  bool refuses = false;  // registering and removing
  std::vector<std::string> calls;
  std::vector<void (^)(NSError*)> removals;  // that the system has not answered yet
};

Services& services();

/// Answers the oldest removal, on another thread; nil: success.
void answerRemoval(NSError* error);

}  // namespace vorli::macfake
