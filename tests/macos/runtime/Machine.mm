#include "tests/macos/runtime/Machine.h"

#include "tests/macos/runtime/Classes.h"
#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

#include <IOKit/ps/IOPowerSources.h>
#include <algorithm>
#include <unistd.h>

namespace vorli::macfake {

static State<Machine> machineState;

Machine& machine() {
  return *machineState;
}

}  // namespace vorli::macfake

using vorli::macfake::shared;
using vorli::macfake::string;
using vorli::macfake::machine;

@implementation NSProcessInfo

+ (NSProcessInfo*)processInfo {
  static NSProcessInfo* const info = shared([[NSProcessInfo alloc] init]);
  return info;
}
- (NSDictionary*)environment {
  NSMutableDictionary* const variables = [[NSMutableDictionary alloc] init];
  for (char** each = environ; *each; ++each) {
    const std::string_view variable = *each;
    const auto equals = variable.find('=');
    if (equals == std::string_view::npos) continue;
    NSString* const value = string(variable.substr(equals + 1));
    if (value) variables[string(variable.substr(0, equals))] = value;
  }
  return variables;
}
- (NSUInteger)processorCount {
  return machine().processorCount;
}
- (NSUInteger)activeProcessorCount {
  return machine().activeProcessorCount;
}
- (unsigned long long)physicalMemory {
  return machine().physicalMemory;
}
- (NSOperatingSystemVersion)operatingSystemVersion {
  return machine().version;
}
- (NSProcessInfoThermalState)thermalState {
  return machine().thermalState;
}
- (BOOL)isLowPowerModeEnabled {
  return machine().isLowPower;
}
@end

Class NSClassFromString(NSString* name) {
  return vorli::objc::classNamed(name.UTF8String);
}

@implementation NSThread
+ (void)sleepForTimeInterval:(NSTimeInterval)seconds {
  machine().sleeps.push_back(seconds);
}
@end

@implementation NSBundle {
  NSString* _path;
  NSDictionary* _info;
}

+ (instancetype)installAt:(NSString*)path info:(NSDictionary*)info {
  NSBundle* const bundle = [[self alloc] init];
  bundle->_path = path;
  bundle->_info = info;
  machine().bundles[path] = bundle;
  return bundle;
}
+ (NSBundle*)mainBundle {
  return machine().mainBundle;
}
+ (nullable instancetype)bundleWithPath:(NSString*)path {
  return machine().bundles[path];
}
- (BOOL)loadAndReturnError:(NSError* __autoreleasing _Nullable* _Nullable)error {
  if (!machine().canLoadBundles && error) *error = [NSError errorWithCode:3587 text:@"not loaded"];
  return machine().canLoadBundles;
}
- (nullable id)objectForInfoDictionaryKey:(NSString*)key {
  return _info[key];
}
- (NSString*)bundlePath {
  return _path;
}
- (NSString*)bundleIdentifier {
  return _info[@"CFBundleIdentifier"];
}
- (NSString*)privateFrameworksPath {
  return [_path stringByAppendingString:@"/Contents/Frameworks"];
}
@end

@implementation NSFileManager

+ (NSFileManager*)defaultManager {
  static NSFileManager* const manager = shared([[NSFileManager alloc] init]);
  return manager;
}
- (NSURL*)homeDirectoryForCurrentUser {
  return [NSURL fileURLWithPath:@"/Users/ada"];
}
- (BOOL)fileExistsAtPath:(NSString*)path {
  return machine().displayNames.contains(path.UTF8String);
}
- (BOOL)isReadableFileAtPath:(NSString*)path {
  return access(path.UTF8String, R_OK) == 0;
}
- (NSString*)displayNameAtPath:(NSString*)path {
  const auto found = machine().displayNames.find(path.UTF8String);
  return found == machine().displayNames.end() ? path : string(found->second);
}
@end

@implementation NSUserDefaults

+ (NSUserDefaults*)standardUserDefaults {
  static NSUserDefaults* const defaults = shared([[NSUserDefaults alloc] init]);
  return defaults;
}
- (nullable id)objectForKey:(NSString*)key {
  return machine().defaults[key];
}
- (void)setObject:(nullable id)value forKey:(NSString*)key {
  machine().defaults[key] = value;
}
- (void)removeObjectForKey:(NSString*)key {
  machine().defaults[key] = nil;
}
- (BOOL)synchronize {
  ++machine().synchronizations;
  return YES;
}
@end

@implementation NSNotification
@synthesize userInfo = _userInfo;

+ (instancetype)notificationWithUserInfo:(NSDictionary*)userInfo {
  NSNotification* const notification = [[self alloc] init];
  notification->_userInfo = [userInfo copy];
  return notification;
}
@end

@implementation NSOperationQueue
+ (NSOperationQueue*)mainQueue {
  static NSOperationQueue* const queue = shared([[NSOperationQueue alloc] init]);
  return queue;
}
@end

@interface VorliObserver : NSObject {
 @public
  NSString* name;
  NSOperationQueue* queue;
  void (^block)(NSNotification*);
}
@end
@implementation VorliObserver
@end

@implementation NSNotificationCenter {
  std::vector<VorliObserver*> _observers;
}

+ (NSNotificationCenter*)defaultCenter {
  static NSNotificationCenter* const center = shared([[NSNotificationCenter alloc] init]);
  return center;
}
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)object
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification*))block {
  VorliObserver* const observer = [[VorliObserver alloc] init];
  observer->name = name;
  observer->queue = queue;
  observer->block = block;
  _observers.push_back(observer);
  return observer;
}
- (void)removeObserver:(id)observer {
  std::erase(_observers, observer);
}
- (void)post:(NSNotificationName)name userInfo:(NSDictionary*)userInfo {
  NSNotification* const notification = [NSNotification notificationWithUserInfo:userInfo];
  for (VorliObserver* observer : std::vector(_observers)) {
    if (![observer->name isEqual:name]) continue;
    void (^const block)(NSNotification*) = observer->block;
    if (observer->queue) {
      dispatch_async(dispatch_get_main_queue(), ^{
        block(notification);
      });
    } else {
      block(notification);
    }
  }
}
- (NSUInteger)observerCount {
  return _observers.size();
}
@end

@implementation NSDistributedNotificationCenter
+ (NSDistributedNotificationCenter*)defaultCenter {
  static NSDistributedNotificationCenter* const center =
      shared([[NSDistributedNotificationCenter alloc] init]);
  return center;
}
@end

// The record of power sources is any object here; it owns the name.

CFTypeRef IOPSCopyPowerSourcesInfo() {
  if (!machine().hasPowerSources) return nullptr;
  NSArray* const record = [[NSArray alloc] init];
  return (__bridge_retained CFTypeRef)record;
}

CFStringRef IOPSGetProvidingPowerSourceType(CFTypeRef) {
  return (__bridge CFStringRef)machine().powerSource;
}
