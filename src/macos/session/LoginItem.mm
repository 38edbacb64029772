#include "macos/session/LoginItem.h"

#include "macos/Text.h"

#import <ServiceManagement/ServiceManagement.h>

namespace vorli::machost {

int LoginItem::status() {
  return static_cast<int>(SMAppService.mainAppService.status);
}

std::expected<void, std::string> LoginItem::registerItem() {
  NSError* error = nil;
  if ([SMAppService.mainAppService registerAndReturnError:&error]) return {};
  return std::unexpected(textOf(error));
}

// Succeeds for an item that is not registered, which the system refuses to unregister.
std::expected<void, std::string> LoginItem::unregisterItem() {
  SMAppService* const service = SMAppService.mainAppService;
  if (service.status == SMAppServiceStatusNotRegistered) return {};
  NSError* error = nil;
  if ([service unregisterAndReturnError:&error]) return {};
  return std::unexpected(textOf(error));
}

}  // namespace vorli::machost
