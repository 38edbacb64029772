#include "tests/macos/runtime/Services.h"

#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

namespace vorli::macfake {

static State<Services> servicesState;

Services& services() {
  return *servicesState;
}

void answerRemoval(NSError* error) {
  void (^const handler)(NSError*) = services().removals.front();
  services().removals.erase(services().removals.begin());
  runOnThread([handler, error] { handler(error); });
  joinThreads();
}

}  // namespace vorli::macfake

using vorli::macfake::services;

@implementation SMAppService {
  std::string _name;
}

+ (SMAppService*)mainAppService {
  SMAppService* const service = [[self alloc] init];
  service->_name = "main app";
  return service;
}
+ (instancetype)daemonServiceWithPlistName:(NSString*)name {
  SMAppService* const service = [[self alloc] init];
  service->_name = name.UTF8String;
  return service;
}
- (BOOL)refuse:(NSError* __autoreleasing*)error {
  if (services().refuses && error) *error = [NSError errorWithCode:1 text:@"Operation not permitted"];
  return services().refuses;
}
- (BOOL)registerAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error {
  services().calls.push_back("register " + _name);
  return ![self refuse:error];
}
- (BOOL)unregisterAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error {
  services().calls.push_back("unregister " + _name);
  return ![self refuse:error];
}
- (void)unregisterWithCompletionHandler:(void (^)(NSError* _Nullable))handler {
  services().calls.push_back("unregister later " + _name);
  services().removals.push_back(handler);
}
- (SMAppServiceStatus)status {
  return services().status;
}
+ (void)openSystemSettingsLoginItems {
  services().calls.push_back("open settings");
}
@end
